#pragma once

#include "server/Store/Scope.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Reads the rules.md files.
namespace quillstead::server::Rules {

/// The personal rules, then the project's after a line that says whose they are, with blank lines
/// between. Empty when there are none. Safe inside a fence. For a file that cannot be used, a line
/// with the reason.
std::string read(const Scope& scope);

/// Where `text`, such rules, may be cut without taking one apart: the lengths of those beginnings
/// that end with a whole rule, growing, the last being all of it. A rule is an item of an outermost
/// list with all that belongs to it, or a paragraph; a heading, and a line that ends in a colon,
/// goes with what follows. Code stays in one piece. `text` has no white space at its ends; an empty
/// text gives none.
std::vector<std::size_t> borders(std::string_view text);

}  // namespace quillstead::server::Rules
