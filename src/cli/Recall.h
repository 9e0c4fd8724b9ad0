#pragma once

#include <string>
#include <vector>

namespace quillstead::cli {

struct Context;

/// `quillstead recall`: shows what a prompt would bring.
namespace Recall {

struct Options {
  std::vector<std::string> prompt;  ///< its words
  std::string harness = "claude-code";
  std::string directory;  ///< the working directory; empty: ours
  bool json = false;
};

/// Returns the exit status: 1 when the hook does not run, or the server does not answer.
int run(const Options& options, const Context& context);

}  // namespace Recall
}  // namespace quillstead::cli
