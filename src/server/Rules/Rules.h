#pragma once

#include "server/Store/Scope.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What the user's rules.md files say.
namespace quillstead::server::Rules {

/// The personal rules, then the project's behind a line that says whose they are, blank lines
/// between; empty when there are none. Safe to stand in a fence. A file that cannot be used is
/// named with the reason instead.
std::string read(const Scope& scope);

/// Where `text`, such rules, may be cut without taking one apart: the lengths of those beginnings
/// that end with a whole rule, growing, the last being all of it. A rule is an item of an outermost
/// list with all that belongs to it, or a paragraph; a heading, and a line that ends in a colon,
/// goes with what follows. Code stays in one piece. `text` has no white space at its ends; an empty
/// text gives none.
std::vector<std::size_t> borders(std::string_view text);

}  // namespace quillstead::server::Rules
