#pragma once

#include <string>

namespace quillstead::cli {

struct Context;

/// `quillstead texts`, which the build runs and the help does not show: the man pages and the
/// completions of all three programs.
namespace Texts {

struct Options {
  std::string directory;  ///< where they go; made when it is missing
};

/// Writes quillstead.1, quillstead.bash, _quillstead and quillstead.fish, and so on for each
/// program. Returns the exit status.
int run(const Options& options, const Context& context);

}  // namespace Texts
}  // namespace quillstead::cli
