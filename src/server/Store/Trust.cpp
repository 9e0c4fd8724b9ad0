#include "server/Store/Trust.h"

#include "server/Complaint.h"
#include "server/UserPlaces.h"
#include "support/OS/AtomicFile.h"
#include "support/OS/Directory.h"
#include "support/OS/Environment.h"
#include "support/OS/File.h"
#include "support/OS/Paths.h"
#include "support/Text/Text.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace quillstead::server {

namespace {

/// The file `trusted` in the personal directory: the trusted directories, one path a line.
namespace TrustFile {

using Lines = std::vector<std::string>;

/// Why the file does not count or cannot be used, for the user, without a full stop.
struct Unusable {
  std::string reason;
};

enum class Change { made, none };
using Outcome = std::variant<Change, Unusable>;

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

/// Its lines, unchecked; none when there is no file.
std::variant<Lines, Unusable> read(const OS::Environment& environment) {
  const Place place = placeOf(environment);
  if (!place.directory.isOpen()) return Lines{};
  return linesIn(place, environment);
}

/// Adds a line at the end, or removes it anywhere; other lines do not change. Creates the file and
/// its directory for the user only. Waits for other processes that do the same.
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

}  // namespace TrustFile

/// The directories of a colon-separated list. Those that do not exist are left out.
std::vector<std::string> listed(std::string_view list) {
  std::vector<std::string> directories;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    const std::string path(list.substr(0, end));
    list.remove_prefix(std::min(list.size(), end + 1));
    if (!path.starts_with('/')) continue;
    if (auto canonical = OS::canonicalPath(path)) directories.push_back(std::move(*canonical));
  }
  return directories;
}

bool isDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The project that is meant: a directory named like a store stands for its parent.
std::string projectOf(std::string directory) {
  const std::string ending = "/" + std::string(UserPlaces::storeName);
  if (directory.size() > ending.size() && directory.ends_with(ending)) {
    directory.resize(directory.size() - ending.size());
  }
  return directory;
}

Trust::Outcome outcomeOf(const TrustFile::Outcome& outcome, std::string directory) {
  if (const auto* failed = std::get_if<TrustFile::Unusable>(&outcome)) {
    return Trust::Refused{failed->reason};
  }
  const bool wasSo = std::get<TrustFile::Change>(outcome) == TrustFile::Change::none;
  return Trust::Changed{.directory = std::move(directory), .wasSo = wasSo};
}

}  // namespace

Trust Trust::read(const OS::Environment& environment) {
  Trust trust;
  auto file = TrustFile::read(environment);
  if (const auto* unusable = std::get_if<TrustFile::Unusable>(&file)) {
    complain(unusable->reason + ", so it trusts nothing");
  } else {
    for (std::string& line : std::get<TrustFile::Lines>(file)) {
      if (!line.starts_with('/')) continue;
      trust.entries_.push_back({.directory = std::move(line), .source = Entry::Source::file});
    }
  }
  for (std::string& path : listed(environment.value("QUILLSTEAD_TRUST").value_or(""))) {
    trust.entries_.push_back({.directory = std::move(path), .source = Entry::Source::environment});
  }
  return trust;
}

std::optional<std::string> Trust::coverOf(std::string_view path) const {
  for (const Entry& entry : entries_) {
    const bool isBelow = path.starts_with(UserPlaces::joined(entry.directory, ""));
    if (isBelow || path == entry.directory) return entry.directory;
  }
  return std::nullopt;
}

Trust::Outcome Trust::add(const OS::Environment& environment, const std::string& directory) {
  const auto canonical = OS::canonicalPath(directory);
  if (!canonical || !isDirectory(*canonical)) return Refused{directory + " is not a directory"};
  const std::string project = projectOf(*canonical);
  if (project.find_first_of("\r\n") != std::string::npos) {
    return Refused{directory + " cannot be a line of a file"};
  }
  return outcomeOf(TrustFile::add(environment, project), project);
}

Trust::Outcome Trust::revoke(const OS::Environment& environment, const std::string& directory) {
  const std::string project = projectOf(OS::canonicalPath(directory).value_or(directory));
  return outcomeOf(TrustFile::remove(environment, project), project);
}

}  // namespace quillstead::server
