#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::cli {

struct Context;

/// `quillstead log`: statistics of the hook's log.
namespace Log {

struct Options {
  std::string since;  ///< an age, as `age` reads it; empty: the whole log
  bool json = false;
  std::string page;  ///< the file for a page with plots; empty: none
  bool follow = false;
};

/// Returns the exit status: 1 when there is no log, or it cannot be read or shown.
int run(const Options& options, const Context& context);

/// The time that "90s", "5m", "12h", "7d" or "2w" says; absent for anything else.
std::optional<std::chrono::seconds> age(std::string_view text);

}  // namespace Log
}  // namespace quillstead::cli
