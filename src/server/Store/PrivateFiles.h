#pragma once

#include "server/Store/Scope.h"

#include <sys/types.h>

#include <string>
#include <vector>

/// The personal store is for its user's eyes: directories 0700, files 0600.
namespace quillstead::server::PrivateFiles {

struct Wide {
  std::string path;
  mode_t mode;  ///< its permissions
};

/// What of the store others may read or write: its directory, `memory`, `rules.md`, `trusted` and
/// the cards, in this order. Symbolic links are left out. The server itself changes no mode of what
/// it has not made.
std::vector<Wide> widerThanPrivate(const Store& personal);

}  // namespace quillstead::server::PrivateFiles
