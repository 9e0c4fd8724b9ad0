#include "server/Store/TrustFile.h"

#include "server/UserPlaces.h"
#include "support/OS/AtomicFile.h"
#include "support/OS/Directory.h"
#include "support/OS/FileContent.h"
#include "support/OS/FileMode.h"
#include "support/OS/Paths.h"
#include "support/Text/Text.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>

namespace quillstead::server::TrustFile {

namespace {

constexpr const char* fileName = "trusted";
constexpr std::size_t largestFile = 1'048'576;  // bytes

/// The directory of the file, held open.
struct Place {
  std::string path;
  OS::Descriptor directory;  ///< not open when there is none
};

bool isOurs(const OS::Descriptor& directory) {
  struct stat status {};
  return fstat(directory.number(), &status) == 0 && OS::ownershipOf(status) == OS::Ownership::ours;
}

/// True when `directory` has a store that is not the personal one, nor in the personal one's
/// default place.
bool holdsProject(const std::string& directory, const std::string& personal,
                  const std::string& byDefault) {
  const std::string store = UserPlaces::joined(directory, UserPlaces::storeName);
  struct stat status {};
  if (lstat(store.c_str(), &status) != 0) return false;
  if (OS::ownershipOf(status) == OS::Ownership::someoneElses) return false;
  const auto canonical = OS::canonicalPath(store);
  return canonical != personal && canonical != byDefault;
}

/// True when a directory above the personal one is a project: whoever wrote that project may have
/// written the file too.
bool liesInProject(const std::string& personal, const std::string& byDefault) {
  std::string directory = personal;
  for (std::size_t slash = directory.rfind('/'); slash != std::string::npos;
       slash = directory.rfind('/')) {
    directory.resize(slash);
    if (holdsProject(directory.empty() ? "/" : directory, personal, byDefault)) return true;
  }
  return false;
}

Place placeOf(const OS::Environment& environment) {
  std::string path = UserPlaces::personalStore(environment);
  if (path.empty()) return {};
  OS::Descriptor directory = OS::openDirectory(path, OS::Links::followed);
  return {.path = std::move(path), .directory = std::move(directory)};
}

/// Why a file there cannot be trusted; absent when it can.
std::optional<Unusable> flawOf(const Place& place, const OS::Environment& environment) {
  const std::string file = place.path + '/' + fileName;
  if (!isOurs(place.directory))
    return Unusable{file + " lies in a directory that is not yours alone"};
  if (liesInProject(place.path, UserPlaces::defaultPersonalStore(environment))) {
    return Unusable{file + " lies in a project"};
  }
  return std::nullopt;
}

std::variant<Lines, Unusable> linesIn(const Place& place, const OS::Environment& environment) {
  const auto read = OS::readFile(place.directory, fileName, largestFile);
  const auto* const none = std::get_if<OS::NoContent>(&read);
  if (none && *none == OS::NoContent::missing) return Lines{};
  if (auto flaw = flawOf(place, environment)) return std::move(*flaw);

  const std::string path = place.path + '/' + fileName;
  if (none && *none == OS::NoContent::symbolicLink) return Unusable{path + " is a symbolic link"};
  if (none) return Unusable{path + " cannot be read"};
  const auto& content = std::get<OS::FileContent>(read);
  if (content.ownership != OS::Ownership::ours) {
    return Unusable{path + " can be written by other users"};
  }
  Lines lines;
  for (std::string_view rest = content.bytes; !rest.empty();) {
    lines.emplace_back(Text::takeLine(rest));
  }
  return lines;
}

/// Reads the lines, lets `edit` change them and writes them back, under a lock.
Outcome changed(const OS::Environment& environment, const std::function<bool(Lines&)>& edit) {
  const Place place = placeOf(environment);
  if (!place.directory.isOpen()) return Unusable{"there is no directory for personal memory"};
  if (auto flaw = flawOf(place, environment)) return std::move(*flaw);
  const OS::Lock lock(place.directory);
  auto read = linesIn(place, environment);
  if (auto* unusable = std::get_if<Unusable>(&read)) return std::move(*unusable);
  auto& lines = std::get<Lines>(read);
  if (!edit(lines)) return Change::none;

  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  if (OS::AtomicFile::replace(place.directory, fileName, text, OS::FileMode::privateFile)) {
    return Change::made;
  }
  return Unusable{place.path + '/' + fileName + " cannot be written: " + std::strerror(errno)};
}

}  // namespace

std::variant<Lines, Unusable> read(const OS::Environment& environment) {
  const Place place = placeOf(environment);
  if (!place.directory.isOpen()) return Lines{};
  return linesIn(place, environment);
}

Outcome add(const OS::Environment& environment, const std::string& line) {
  OS::makeDirectories(UserPlaces::personalStore(environment), OS::FileMode::privateDirectory);
  return changed(environment, [&](Lines& lines) {
    if (std::find(lines.begin(), lines.end(), line) != lines.end()) return false;
    lines.push_back(line);
    return true;
  });
}

Outcome remove(const OS::Environment& environment, const std::string& line) {
  if (!placeOf(environment).directory.isOpen()) return Change::none;
  return changed(environment, [&](Lines& lines) { return std::erase(lines, line) > 0; });
}

}  // namespace quillstead::server::TrustFile
