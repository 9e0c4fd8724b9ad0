#pragma once

#include <string>
#include <vector>

namespace quillstead::cli {

struct Context;

/// `quillstead install`: the harnesses' settings get what our programs need.
namespace Install {

struct Options {
  std::vector<std::string> harnesses;  ///< none: those that are there
  bool isDryRun = false;
};

/// Returns the exit status.
int run(const Options& options, const Context& context);

}  // namespace Install
}  // namespace quillstead::cli
