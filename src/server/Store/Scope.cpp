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
#include <variant>

namespace quillstead::server {

namespace {

using Why = SkippedStore::Why;

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

std::optional<Why> flawOf(OS::Ownership ownership) {
  switch (ownership) {
    case OS::Ownership::ours:
      return std::nullopt;
    case OS::Ownership::someoneElses:
      return Why::someoneElses;
    case OS::Ownership::everybodys:
      break;
  }
  return Why::everybodys;
}

/// The store, when the user owns it and trusts its place.
std::variant<Store, Why> opened(const Candidate& found, const Trust& trust) {
  const bool isInProject = found.root.starts_with(UserPlaces::joined(found.project, ""));
  const auto top = isInProject ? found.project : trust.coverOf(found.root);
  if (!top) return Why::linkOut;
  auto directory = std::make_shared<const OS::Descriptor>(openIn(*top, found.root));
  struct stat status {};
  if (!directory->isOpen() || fstat(directory->number(), &status) != 0) return Why::unreadable;
  if (const auto flaw = flawOf(OS::ownershipOf(status))) return *flaw;
  return Store{.kind = Store::Kind::project, .root = found.root, .directory = std::move(directory)};
}

/// Looks for the nearest `.quillstead` in a directory or above it. Skipped, so that the search goes
/// on above: those in `personal`; those that another user owns or any user can write to; links that
/// lead neither into their project nor into another trusted directory. Standard error reports the
/// last two.
class ProjectSearch {
 public:
  ProjectSearch(const std::vector<std::string>& personal, const OS::Environment& environment)
      : personal_(personal), environment_(environment) {}

  /// Fills in what the scope says of projects. `start`: an absolute path.
  void run(const std::string& start, Scope& scope) {
    if (start.size() >= PATH_MAX) return;  // there is no such directory
    for (std::string directory = start;;) {
      const auto candidate = candidateIn(directory);
      if (candidate && isProject(*candidate) && isEndedBy(*candidate, scope)) return;
      const std::size_t slash = directory.find_last_of('/');
      if (slash == std::string::npos || directory == "/") return;
      directory.resize(slash == 0 ? 1 : slash);
    }
  }

 private:
  [[nodiscard]] bool isProject(const Candidate& candidate) const {
    return std::find(personal_.begin(), personal_.end(), candidate.root) == personal_.end();
  }

  /// True when the candidate is used, or left out because it is not trusted.
  bool isEndedBy(const Candidate& candidate, Scope& scope) {
    auto flaw = flawOf(candidate.ownership);
    if (!flaw) {
      if (!trust_) trust_ = Trust::read(environment_);
      scope.projectLeftOut = !trust_->coverOf(candidate.project);
      if (scope.projectLeftOut) return true;
      auto outcome = opened(candidate, *trust_);
      if (auto* const store = std::get_if<Store>(&outcome)) {
        scope.project = std::move(*store);
        return true;
      }
      flaw = std::get<Why>(outcome);
    }
    complain(candidate.path + " is skipped: " + std::string(explained(*flaw)));
    scope.skipped.push_back({.path = candidate.path, .why = *flaw});
    return false;
  }

  const std::vector<std::string>& personal_;
  const OS::Environment& environment_;
  std::optional<Trust> trust_;  ///< read when there is a project
};

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
    complain(root + " is skipped: " + std::string(explained(Why::everybodys)));
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

std::string_view explained(SkippedStore::Why why) {
  switch (why) {
    case Why::someoneElses:
      return "it belongs to another user";
    case Why::everybodys:
      return "any user can write to it";
    case Why::linkOut:
      return "it is a symbolic link out of the project";
    case Why::unreadable:
      break;
  }
  return "it cannot be opened";
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
  const std::vector<std::string> personal{personalRoot,
                                          UserPlaces::defaultPersonalStore(environment)};
  ProjectSearch(personal, environment).run(start, scope);
  return scope;
}

}  // namespace quillstead::server
