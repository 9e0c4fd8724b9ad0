#include "server/Index/SeenFiles.h"

#include "server/Store/StoreFiles.h"
#include "support/OS/File.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace quillstead::server::SeenFiles {

namespace {

/// What is stored before a file's name. The name ends in a NUL.
struct Seen {
  OS::FileStamp stamp;
  std::uint32_t store;
  std::uint32_t nameLength;  ///< bytes, without the NUL
};

std::size_t partSize(std::size_t files) {
  if (files <= fewFiles) return std::max<std::size_t>(files, 1);
  constexpr std::size_t turns = 10;
  return std::clamp((files + turns - 1) / turns, smallestPart, largestPart);
}

void append(std::string& text, const Survey::File& file) {
  const Seen seen{.stamp = file.stamp.value_or(OS::FileStamp{}),
                  .store = static_cast<std::uint32_t>(file.store),
                  .nameLength = static_cast<std::uint32_t>(file.name.size())};
  const std::size_t begin = text.size();
  text.resize(begin + sizeof seen);
  std::memcpy(text.data() + begin, &seen, sizeof seen);
  text.append(file.name).push_back('\0');
}

/// Removes the first file from `files`. True when it still has its stamp.
bool isNextUnchanged(std::string_view& files, const Survey& survey) {
  Seen seen{};
  if (files.size() < sizeof seen) return false;
  std::memcpy(&seen, files.data(), sizeof seen);
  files.remove_prefix(sizeof seen);
  const char* const name = files.data();
  if (files.size() <= seen.nameLength || name[seen.nameLength] != '\0') return false;
  files.remove_prefix(seen.nameLength + std::size_t{1});
  const Store::Kind store = seen.store == 0 ? Store::Kind::project : Store::Kind::personal;
  return StoreFiles::cardStamp(survey.cards(store), store, name) == seen.stamp;
}

}  // namespace

std::int64_t partsFor(std::size_t files) {
  const std::size_t size = partSize(files);
  return static_cast<std::int64_t>(std::max<std::size_t>((files + size - 1) / size, 1));
}

bool keep(Database& database, const std::vector<Survey::File>& files) {
  if (!forget(database)) return false;
  Statement add = database.prepare("INSERT INTO seen VALUES (?, ?)");
  const std::size_t size = partSize(files.size());
  for (std::int64_t part = 0; part < partsFor(files.size()); ++part) {
    const std::size_t begin = static_cast<std::size_t>(part) * size;
    const std::size_t end = std::min(begin + size, files.size());
    std::string text;
    for (std::size_t at = begin; at < end; ++at) append(text, files[at]);
    if (!add.bind(1, part).bind(2, text).run()) return false;
  }
  return true;
}

bool forget(Database& database) { return database.run("DELETE FROM seen"); }

bool areUnchanged(Database& database, std::int64_t part, const Survey& survey) {
  Statement read = database.prepare("SELECT files FROM seen WHERE part = ?");
  if (read.bind(1, part).step() != Statement::Step::row) return false;
  std::string_view files = read.text(0);
  while (!files.empty()) {
    if (!isNextUnchanged(files, survey)) return false;
  }
  return true;
}

}  // namespace quillstead::server::SeenFiles
