#pragma once

#include "support/OS/Environment.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace quillstead::server {

/// Splits bytes into lines, as they arrive.
class LineBuffer {
 public:
  /// Longer lines are dropped.
  explicit LineBuffer(std::size_t longestLine) : longestLine_(longestLine) {}

  struct TooLong {};  ///< instead of a line that was dropped
  using Line = std::variant<std::string, TooLong>;

  void add(std::string_view bytes) { bytes_.append(bytes); }

  /// The next whole line, without its line feed; absent until there is one.
  std::optional<Line> take();

  /// The rest after the end of input, if any.
  std::optional<Line> takeRest();

 private:
  Line finished(std::size_t end);

  std::size_t longestLine_;
  std::string bytes_;
  std::size_t start_ = 0;     ///< where the next line begins in `bytes_`
  std::size_t searched_ = 0;  ///< no line feed is between `start_` and here
  bool overlong_ = false;     ///< the beginning of the current line was dropped
};

}  // namespace quillstead::server

/// The memory server: requests come in on one descriptor, one a line, responses go out on
/// another.
namespace quillstead::server::Server {

/// Responds until the input ends and every response is written; gives the process's exit status, 0
/// unless the input could not be read or a response not be written.
int run(int input, int output, const OS::Environment& environment);

}  // namespace quillstead::server::Server
