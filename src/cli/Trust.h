#pragma once

#include <string>

namespace quillstead::cli {

struct Context;

/// `quillstead trust`: whose project files may speak to the agent.
namespace Trust {

struct Options {
  std::string directory;  ///< empty: the project that the current directory is in
  bool list = false;
  bool revoke = false;
};

/// Returns the exit status: 1 when nothing could be changed, or the directory stays trusted.
int run(const Options& options, const Context& context);

}  // namespace Trust
}  // namespace quillstead::cli
