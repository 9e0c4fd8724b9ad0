#pragma once

#include "support/JSON/View.h"

#include <cstddef>
#include <span>

namespace quillstead::JSON {

/// Leaves each key once among the members of an object: of several with the same key the last value
/// counts, in the place of the first. Gives how many members are left, at the start of `members`.
std::size_t dropRepeatedKeys(std::span<MemberView> members);

}  // namespace quillstead::JSON
