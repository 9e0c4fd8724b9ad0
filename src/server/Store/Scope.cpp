#include "server/Store/Scope.h"

#include "support/OS/CanonicalPath.h"
#include "support/OS/HomeDirectory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

namespace quillstead {

namespace {

constexpr std::string_view storeName = ".quillstead";

std::string joined(std::string_view directory, std::string_view name) {
  std::string path(directory);
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

std::string canonicalOrGiven(std::string path) {
  std::optional<std::string> canonical = OS::canonicalPath(path);
  return canonical ? std::move(*canonical) : std::move(path);
}

/// The personal store's place by default, which is never a project's; empty without a home.
std::string defaultPersonalRoot(const OS::Environment& environment) {
  const std::string home = homeDirectory(environment);
  return home.empty() ? home : canonicalOrGiven(joined(home, storeName));
}

std::string ownDirectory() { return OS::canonicalPath(".").value_or(std::string()); }

/// `path` made absolute, as far as possible without links; empty when nothing is known.
std::string absolute(std::string_view path) {
  std::string whole(path);
  if (!whole.starts_with('/')) {
    std::string own = ownDirectory();
    if (own.empty()) return own;
    whole = joined(own, whole);
  }
  return canonicalOrGiven(std::move(whole));
}

/// A directory that somebody else put above ours, as anyone can in /tmp, is no project of ours.
bool isTrusted(const struct stat& found, const struct stat& workingDirectory) {
  return found.st_uid == workingDirectory.st_uid || found.st_uid == geteuid() || found.st_uid == 0;
}

/// `directory` and those above it, up to the first that holds a store.
std::optional<Store> projectAbove(std::string directory, const std::vector<std::string>& personal) {
  if (directory.size() >= PATH_MAX) return std::nullopt;  // there is no such directory
  struct stat workingDirectory {};
  if (stat(directory.c_str(), &workingDirectory) != 0) workingDirectory.st_uid = geteuid();
  for (;;) {
    const std::string candidate = joined(directory, storeName);
    struct stat found {};
    if (stat(candidate.c_str(), &found) == 0 && S_ISDIR(found.st_mode) &&
        isTrusted(found, workingDirectory)) {
      std::string root = canonicalOrGiven(candidate);
      if (std::find(personal.begin(), personal.end(), root) == personal.end()) {
        return Store{.kind = Store::Kind::project, .root = std::move(root)};
      }
    }
    const std::size_t slash = directory.find_last_of('/');
    if (slash == std::string::npos || directory == "/") return std::nullopt;
    directory.resize(slash == 0 ? 1 : slash);
  }
}

}  // namespace

std::string_view nameOf(Store::Kind kind) {
  return kind == Store::Kind::project ? "project" : "personal";
}

std::string homeDirectory(const OS::Environment& environment) {
  const auto home = environment.value("HOME");
  return home && !home->empty() ? std::string(*home) : OS::homeDirectory();
}

std::vector<Store> Scope::stores() const {
  std::vector<Store> all;
  if (personal) all.push_back(*personal);
  if (project) all.push_back(*project);
  return all;
}

Scope Scope::find(const OS::Environment& environment, std::optional<std::string_view> cwd) {
  const std::string byDefault = defaultPersonalRoot(environment);
  const auto chosen = environment.value("QUILLSTEAD_HOME");
  const std::string personalRoot = chosen && !chosen->empty() ? absolute(*chosen) : byDefault;

  Scope scope;
  if (!personalRoot.empty()) {
    scope.personal = Store{.kind = Store::Kind::personal, .root = personalRoot};
  }
  const std::string start = cwd ? absolute(*cwd) : ownDirectory();
  if (!start.empty()) scope.project = projectAbove(start, {personalRoot, byDefault});
  return scope;
}

}  // namespace quillstead
