#pragma once

#include "server/Store/Scope.h"

#include <sys/types.h>

#include <string>
#include <vector>

/// The personal store is private: directories 0700, files 0600.
namespace quillstead::server::PrivateFiles {

struct Wide {
  std::string path;
  mode_t mode;  ///< its permissions
};

/// What others can read or write in the store: its directory, `memory`, `rules.md`, `trusted` and
/// the cards, in this order. Files in a directory that others cannot enter are left out, and so are
/// symbolic links. The server never changes the mode of a file that it did not create.
std::vector<Wide> widerThanPrivate(const Store& personal);

}  // namespace quillstead::server::PrivateFiles
