#include "server/Store/Scope.h"

#include "server/Complaint.h"
#include "server/Store/Trust.h"
#include "support/OS/Beneath.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/OS/Paths.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <utility>

namespace quillstead::server {

namespace {

void reportSkipped(const std::string& path, std::string_view reason) {
  complain(path + " is skipped: " + std::string(reason));
}

/// A directory entry named `.quillstead`, and the directory that may be a project.
struct Candidate {
  std::string path;         ///< as it was found
  std::string project;      ///< the canonical path of the directory that holds it
  std::string root;         ///< the canonical path of what it is or leads to
  OS::Ownership ownership;  ///< of the link, when it is one
};

std::optional<Candidate> candidateIn(const std::string& directory) {
  std::string path = UserPlaces::joined(directory, UserPlaces::storeName);
  struct stat own {};
  struct stat target {};
  if (lstat(path.c_str(), &own) != 0) return std::nullopt;
  if (stat(path.c_str(), &target) != 0 || !S_ISDIR(target.st_mode)) return std::nullopt;
  auto project = OS::canonicalPath(directory);
  auto root = OS::canonicalPath(path);
  if (!project || !root) return std::nullopt;
  return Candidate{.path = std::move(path),
                   .project = std::move(*project),
                   .root = std::move(*root),
                   .ownership = OS::ownershipOf(own)};
}

/// Opens `root`, which lies in `top`. No link on the way may lead out of `top`.
OS::Descriptor openIn(const std::string& top, const std::string& root) {
  const OS::Descriptor base = OS::openDirectory(top, OS::Links::refused);
  const std::string beginning = UserPlaces::joined(top, "");
  const std::string path = root == top ? "." : root.substr(beginning.size());
  return OS::openBeneath(base, path, O_RDONLY | O_DIRECTORY);
}

bool isUsersOwn(const std::string& path, OS::Ownership ownership) {
  switch (ownership) {
    case OS::Ownership::ours:
      return true;
    case OS::Ownership::someoneElses:
      reportSkipped(path, "it belongs to another user");
      return false;
    case OS::Ownership::everybodys:
      break;
  }
  reportSkipped(path, "any user can write to it");
  return false;
}

/// The store, when the user owns it and trusts its place.
std::optional<Store> opened(const Candidate& found, const Trust& trust) {
  const bool isInProject = found.root.starts_with(UserPlaces::joined(found.project, ""));
  const auto top = isInProject ? found.project : trust.coverOf(found.root);
  if (!top) {
    reportSkipped(found.path, "it is a symbolic link out of the project");
    return std::nullopt;
  }
  auto directory = std::make_shared<const OS::Descriptor>(openIn(*top, found.root));
  struct stat status {};
  if (!directory->isOpen() || fstat(directory->number(), &status) != 0) {
    reportSkipped(found.path, "it cannot be opened");
    return std::nullopt;
  }
  if (!isUsersOwn(found.path, OS::ownershipOf(status))) return std::nullopt;
  return Store{.kind = Store::Kind::project, .root = found.root, .directory = std::move(directory)};
}

/// The project that a directory belongs to.
struct FoundProject {
  std::optional<Store> store;
  bool leftOut = false;  ///< a project exists, but is not trusted; it was not opened
};

/// The nearest `.quillstead` in `start`, an absolute path, or above it. Skipped, so that the search
/// goes on above: those in `personal`; those that another user owns or any user can write to; links
/// that lead neither into their project nor into another trusted directory. Standard error reports
/// the last two.
FoundProject projectAbove(const std::string& start, const std::vector<std::string>& personal,
                          const OS::Environment& environment) {
  if (start.size() >= PATH_MAX) return {};  // there is no such directory
  std::optional<Trust> trust;
  for (std::string directory = start;;) {
    const auto candidate = candidateIn(directory);
    const bool isProject =
        candidate && std::find(personal.begin(), personal.end(), candidate->root) == personal.end();
    if (isProject && isUsersOwn(candidate->path, candidate->ownership)) {
      if (!trust) trust = Trust::read(environment);
      if (!trust->coverOf(candidate->project)) return {.store = {}, .leftOut = true};
      if (auto store = opened(*candidate, *trust)) return {.store = std::move(store)};
    }
    const std::size_t slash = directory.find_last_of('/');
    if (slash == std::string::npos || directory == "/") return {};
    directory.resize(slash == 0 ? 1 : slash);
  }
}

std::string ownDirectory() { return OS::canonicalPath(".").value_or(std::string()); }

/// `path` made absolute, with links resolved where possible; empty when that fails.
std::string absolute(std::string_view path) {
  std::string whole(path);
  if (!whole.starts_with('/')) {
    std::string own = ownDirectory();
    if (own.empty()) return own;
    whole = UserPlaces::joined(own, whole);
  }
  std::optional<std::string> canonical = OS::canonicalPath(whole);
  return canonical ? std::move(*canonical) : std::move(whole);
}

/// The personal store at `root`, which need not exist.
std::optional<Store> personalAt(std::string root) {
  if (root.empty()) return std::nullopt;
  OS::Descriptor directory = OS::openDirectory(root, OS::Links::followed);
  struct stat status {};
  if (directory.isOpen() && fstat(directory.number(), &status) == 0 &&
      OS::ownershipOf(status) == OS::Ownership::everybodys) {
    complain(root + " is skipped: any user can write to it");
    return std::nullopt;
  }
  Store store{.kind = Store::Kind::personal, .root = std::move(root)};
  if (directory.isOpen()) {
    store.directory = std::make_shared<const OS::Descriptor>(std::move(directory));
  }
  return store;
}

}  // namespace

std::string_view nameOf(Store::Kind kind) {
  return kind == Store::Kind::project ? "project" : "personal";
}

std::vector<Store> Scope::stores() const {
  std::vector<Store> all;
  if (personal) all.push_back(*personal);
  if (project) all.push_back(*project);
  return all;
}

Scope Scope::find(const OS::Environment& environment, std::optional<std::string_view> cwd) {
  const std::string personalRoot = UserPlaces::personalStore(environment);
  Scope scope;
  scope.personal = personalAt(personalRoot);
  const std::string start = cwd ? absolute(*cwd) : ownDirectory();
  if (start.empty()) return scope;
  FoundProject project = projectAbove(
      start, {personalRoot, UserPlaces::defaultPersonalStore(environment)}, environment);
  scope.project = std::move(project.store);
  scope.projectLeftOut = project.leftOut;
  return scope;
}

}  // namespace quillstead::server
