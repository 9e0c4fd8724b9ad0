#pragma once

#include "cli/Description.h"

#include <string>

namespace quillstead::cli {

struct Context;

/// `quillstead texts`: writes the man pages and completions of all three programs. The build runs
/// it; the help does not show it.
namespace Texts {

struct Options {
  std::string directory;  ///< where they go; created if it is missing
};

/// Writes quillstead.1, quillstead.bash, _quillstead and quillstead.fish, and so on for each
/// program. Returns the exit status.
int run(const Options& options, const Context& context);

}  // namespace Texts
}  // namespace quillstead::cli

namespace quillstead::cli::ManPage {

/// The man page of a program, for section 1.
std::string of(const ProgramText& program);

}  // namespace quillstead::cli::ManPage
