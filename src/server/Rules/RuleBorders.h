#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

/// Where a text of rules may be cut without taking a rule apart.
namespace quillstead::server::RuleBorders {

/// The lengths of those beginnings of `text` that end with a whole rule, growing, the last being
/// all of it. A rule is an item of an outermost list with all that belongs to it, or a paragraph; a
/// heading, and a line that ends in a colon, goes with what follows. Code stays in one piece.
/// `text` has no white space at its ends; an empty text gives none.
std::vector<std::size_t> of(std::string_view text);

}  // namespace quillstead::server::RuleBorders
