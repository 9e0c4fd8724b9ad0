#include "server/Store/Scope.h"

#include "server/Complaint.h"
#include "server/Store/ProjectSearch.h"
#include "support/OS/CanonicalPath.h"
#include "support/OS/Directory.h"

#include <sys/stat.h>

#include <utility>

namespace quillstead::server {

namespace {

std::string ownDirectory() { return OS::canonicalPath(".").value_or(std::string()); }

/// `path` made absolute, as far as possible without links; empty when nothing is known.
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
    complain(root + " is passed over: everybody may write it");
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
  ProjectSearch::Found project = ProjectSearch::above(
      start, {personalRoot, UserPlaces::defaultPersonalStore(environment)}, environment);
  scope.project = std::move(project.store);
  scope.projectLeftOut = project.leftOut;
  return scope;
}

}  // namespace quillstead::server
