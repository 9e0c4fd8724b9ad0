#include "server/UserPlaces.h"

#include "support/OS/Descriptor.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/OS/Paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <utility>

namespace quillstead::server::UserPlaces {

namespace {

constexpr mode_t rightsOfOthers = 0077;

std::string cachesOfAllPrograms(const OS::Environment& environment) {
  const auto chosen = environment.value("XDG_CACHE_HOME");
  if (chosen && chosen->starts_with('/')) return withoutLastSlashes(*chosen);
  const std::string directory = home(environment);
  return directory.empty() ? std::string() : joined(directory, OS::cacheDirectoryInHome());
}

/// Removes other users' permissions. `status`: of the file at `path`, which is not a link.
bool closed(const std::string& path, const struct stat& status, mode_t mode) {
  if (status.st_uid != geteuid()) return false;
  return (status.st_mode & rightsOfOthers) == 0 || chmod(path.c_str(), mode) == 0;
}

std::string canonicalOrGiven(std::string path) {
  std::optional<std::string> canonical = OS::canonicalPath(path);
  return canonical ? std::move(*canonical) : std::move(path);
}

}  // namespace

std::string home(const OS::Environment& environment) {
  const auto home = environment.value("HOME");
  if (home && home->starts_with('/')) return withoutLastSlashes(*home);
  return withoutLastSlashes(OS::homeDirectory());
}

std::string defaultPersonalStore(const OS::Environment& environment) {
  std::string directory = home(environment);
  return directory.empty() ? directory : canonicalOrGiven(joined(directory, storeName));
}

std::string personalStore(const OS::Environment& environment) {
  const auto chosen = environment.value("QUILLSTEAD_HOME");
  const bool isChosen = chosen && chosen->starts_with('/');
  return isChosen ? canonicalOrGiven(withoutLastSlashes(*chosen))
                  : defaultPersonalStore(environment);
}

std::string makeCacheDirectory(const OS::Environment& environment) {
  const std::string caches = cachesOfAllPrograms(environment);
  if (caches.empty()) return {};
  const std::string directory = joined(caches, "quillstead");
  if (!OS::makeDirectories(directory, OS::FileMode::privateDirectory)) return {};
  std::optional<std::string> path = OS::canonicalPath(directory);
  struct stat status {};
  if (!path || lstat(path->c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return {};
  if (!closed(*path, status, OS::FileMode::privateDirectory)) return {};
  return std::move(*path);
}

bool makeCacheFile(const std::string& path) {
  struct stat status {};
  const bool exists = lstat(path.c_str(), &status) == 0;
  const bool isFile = exists && S_ISREG(status.st_mode);
  if (isFile && closed(path, status, OS::FileMode::privateFile)) return true;
  if (exists && unlink(path.c_str()) != 0) return false;
  constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const OS::Descriptor made(open(path.c_str(), flags, OS::FileMode::privateFile));
  // Another server may have made it at the same time.
  return made.isOpen() || (lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode));
}

std::string withoutLastSlashes(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return std::string(path);
}

std::string joined(std::string_view directory, std::string_view name) {
  std::string path(directory);
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

}  // namespace quillstead::server::UserPlaces
