#pragma once

#include "support/JSON/View.h"

#include <cstddef>
#include <span>

namespace quillstead::JSON {

/// Removes repeated keys from the members of an object: the last value counts, in the place of the
/// first. Returns how many members are left, at the start of `members`.
std::size_t dropRepeatedKeys(std::span<MemberView> members);

}  // namespace quillstead::JSON
