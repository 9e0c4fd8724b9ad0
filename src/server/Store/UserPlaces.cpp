#include "server/Store/UserPlaces.h"

#include "support/OS/CanonicalPath.h"
#include "support/OS/HomeDirectory.h"

#include <optional>
#include <utility>

namespace quillstead::server::UserPlaces {

namespace {

std::string canonicalOrGiven(std::string path) {
  std::optional<std::string> canonical = OS::canonicalPath(path);
  return canonical ? std::move(*canonical) : std::move(path);
}

}  // namespace

std::string home(const OS::Environment& environment) {
  const auto home = environment.value("HOME");
  return home && home->starts_with('/') ? std::string(*home) : OS::homeDirectory();
}

std::string defaultPersonalStore(const OS::Environment& environment) {
  std::string directory = home(environment);
  return directory.empty() ? directory : canonicalOrGiven(joined(directory, storeName));
}

std::string personalStore(const OS::Environment& environment) {
  const auto chosen = environment.value("QUILLSTEAD_HOME");
  const bool isChosen = chosen && chosen->starts_with('/');
  return isChosen ? canonicalOrGiven(std::string(*chosen)) : defaultPersonalStore(environment);
}

std::string joined(std::string_view directory, std::string_view name) {
  std::string path(directory);
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

}  // namespace quillstead::server::UserPlaces
