#pragma once

#include <string>

namespace quillstead::cli {

struct Context;

/// `quillstead trust`: which projects' files may reach the agent.
namespace Trust {

struct Options {
  std::string directory;  ///< empty: the project of the current directory
  bool list = false;
  bool revoke = false;
};

/// Returns the exit status: 1 when nothing was changed, or the directory is still trusted.
int run(const Options& options, const Context& context);

}  // namespace Trust
}  // namespace quillstead::cli
