#pragma once

#include <string>
#include <vector>

namespace quillstead::cli {

struct Context;

/// `quillstead doctor`: what works and what does not.
namespace Doctor {

struct Options {
  std::vector<std::string> harnesses;  ///< empty: all that the user has
  bool json = false;
};

/// Takes at most about 20 seconds. Returns the exit status: 1 when a check fails.
int run(const Options& options, const Context& context);

}  // namespace Doctor
}  // namespace quillstead::cli
