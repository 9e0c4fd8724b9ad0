#include "cli/ProjectTop.h"

#include "server/UserPlaces.h"
#include "support/OS/Paths.h"

#include <sys/stat.h>

namespace quillstead::cli::ProjectTop {

namespace {

/// The nearest directory, from the current one upwards, for which the predicate is true.
template <typename Question>
std::optional<std::string> nearest(Question isIt) {
  std::optional<std::string> own = OS::canonicalPath(".");
  if (!own) return std::nullopt;
  std::string at = *own;
  for (;;) {
    if (isIt(at)) return at;
    const std::size_t slash = at.rfind('/');
    if (at == "/" || slash == std::string::npos) return std::nullopt;
    at.resize(slash == 0 ? 1 : slash);
  }
}

}  // namespace

std::optional<std::string> withGit() {
  return nearest([](const std::string& directory) {
    struct stat status {};
    return stat(server::UserPlaces::joined(directory, ".git").c_str(), &status) == 0;
  });
}

std::optional<std::string> withStore(const Context& context) {
  const std::string byDefault = server::UserPlaces::defaultPersonalStore(context.environment);
  return nearest([&](const std::string& directory) {
    const std::string store = server::UserPlaces::joined(directory, server::UserPlaces::storeName);
    const auto place = OS::canonicalPath(store);
    return place && *place != byDefault && *place != context.places.personalStore;
  });
}

}  // namespace quillstead::cli::ProjectTop
