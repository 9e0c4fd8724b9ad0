#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <vector>

/// Looks for the project that a directory belongs to.
namespace quillstead::server::ProjectSearch {

struct Found {
  std::optional<Store> store;
  bool leftOut = false;  ///< there is one, but the user does not trust it; it was not opened
};

/// The nearest `.quillstead` in `directory`, an absolute path, or above it. Passed over, so that
/// the search goes on above: those in `personal`; what is not the user's own or everybody may
/// write; a link that leads neither into its project nor into another trusted directory. Standard
/// error tells of the last two.
Found above(const std::string& directory, const std::vector<std::string>& personal,
            const OS::Environment& environment);

}  // namespace quillstead::server::ProjectSearch
