#include "server/Index/IndexFile.h"

#include "server/Index/IndexTables.h"
#include "server/UserPlaces.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/Text/Hash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <vector>

namespace quillstead::server::IndexFile {

namespace {

using std::chrono::nanoseconds;

constexpr std::string_view suffix = ".sqlite";
constexpr const char* journalSuffix = "-journal";
constexpr const char* turnSuffix = "-turn";
constexpr const char* pruningNote = "pruned";

/// The prefix of the names of all indexes of this version.
std::string prefix() { return "index-" + std::to_string(IndexTables::version) + '-'; }

nanoseconds age(OS::FileStamp stamp) {
  return std::chrono::system_clock::now().time_since_epoch() - nanoseconds(stamp.modified);
}

bool isGone(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

/// An index that is in use, or cannot be read, is kept.
bool isOfGoneStores(const std::string& path) {
  using namespace std::chrono_literals;
  Database database = Database::open(path, 0ms);
  const std::vector<std::string> roots = IndexTables::roots(database);
  return std::any_of(roots.begin(), roots.end(), isGone);
}

/// SQLite opens a journal for reading, and would wait for ever if it were a pipe.
void removeFalseJournal(const std::string& path) {
  const std::string journal = path + journalSuffix;
  struct stat status {};
  if (lstat(journal.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) unlink(journal.c_str());
}

bool isUseless(const OS::Descriptor& directory, const std::string& path, const std::string& name) {
  const auto stamp = OS::stampOf(directory, name.c_str());
  if (!stamp) return true;
  if (!name.starts_with(prefix())) return age(*stamp) > std::chrono::days(30);
  removeFalseJournal(path + name);
  return isOfGoneStores(path + name);
}

/// True once a day.
bool isDue(const OS::Descriptor& directory) {
  const auto last = OS::stampOf(directory, pruningNote);
  if (last && age(*last) >= nanoseconds(0) && age(*last) < std::chrono::days(1)) return false;
  constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const OS::Descriptor note(
      openat(directory.number(), pruningNote, flags, OS::FileMode::privateFile));
  return note.isOpen() && futimens(note.number(), nullptr) == 0;
}

}  // namespace

std::string place(const Scope& scope, const OS::Environment& environment) {
  const std::string directory = UserPlaces::makeCacheDirectory(environment);
  if (directory.empty()) return {};
  std::string roots = scope.personal ? scope.personal->root : "";
  roots += '\0';
  if (scope.project) roots += scope.project->root;
  std::string path = directory + '/' + prefix() + Text::inHexadecimal(Text::hashOf(roots));
  path += suffix;
  if (!UserPlaces::makeCacheFile(path)) return {};
  removeFalseJournal(path);
  return path;
}

std::uint64_t nextTurn(const std::string& path) {
  constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const OS::Descriptor file(open((path + turnSuffix).c_str(), flags, OS::FileMode::privateFile));
  std::uint64_t turn = 0;
  if (pread(file.number(), &turn, sizeof turn, 0) < 0) return 0;
  const std::uint64_t next = turn + 1;
  return pwrite(file.number(), &next, sizeof next, 0) == sizeof next ? turn : 0;
}

void prune(const std::string& path) {
  const std::size_t slash = path.rfind('/') + 1;
  const std::string directoryPath = path.substr(0, slash);
  const OS::Descriptor directory = OS::openDirectory(directoryPath, OS::Links::followed);
  if (!directory.isOpen() || !isDue(directory)) return;
  std::vector<std::string> names;
  OS::forEachName(directory, suffix, [&](const char* name) { names.emplace_back(name); });
  for (const std::string& name : names) {
    if (!name.starts_with("index-") || path.compare(slash, path.npos, name) == 0) continue;
    if (!isUseless(directory, directoryPath, name)) continue;
    unlinkat(directory.number(), name.c_str(), 0);
    for (const char* const more : {journalSuffix, turnSuffix}) {
      unlinkat(directory.number(), (name + more).c_str(), 0);
    }
  }
}

}  // namespace quillstead::server::IndexFile
