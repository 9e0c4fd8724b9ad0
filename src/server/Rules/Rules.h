#pragma once

#include "server/Store/Scope.h"

#include <string>

/// What the user's rules.md files say.
namespace quillstead::server::Rules {

/// The personal rules, then the project's behind a line that says whose they are, blank lines
/// between; empty when there are none. Safe to stand in a fence. A file that cannot be used is
/// named with the reason instead.
std::string read(const Scope& scope);

}  // namespace quillstead::server::Rules
