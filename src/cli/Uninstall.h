#pragma once

#include <string>
#include <vector>

namespace quillstead::cli {

struct Context;

/// `quillstead uninstall`: what is ours goes out of the harnesses' settings.
namespace Uninstall {

struct Options {
  std::vector<std::string> harnesses;  ///< none: those that are there
  bool isDryRun = false;
};

/// Returns the exit status.
int run(const Options& options, const Context& context);

}  // namespace Uninstall
}  // namespace quillstead::cli
