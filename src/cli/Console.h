#pragma once

#include "support/OS/Environment.h"

#include <string>
#include <string_view>

namespace quillstead::cli {

enum class Colour { red, green, yellow, blue, faint, bold };

/// A command's output: results go to standard output, messages to standard error.
class Console {
 public:
  /// `output` and `error` are descriptors that the caller owns.
  Console(int output, int error, const OS::Environment& environment);

  /// Buffers `text` until there is enough of it, or `flush` is called.
  void print(std::string_view text);

  /// Writes "quillstead: ", `text` and a line end to the error stream, after what was printed
  /// before.
  void complain(std::string_view text);

  /// The same with `text` only.
  void printError(std::string_view text);

  /// Writes the buffer. False when some output could not be written; what comes later is lost then.
  bool flush();

  /// Why it could not be written, as an error number; 0 when nothing was lost.
  [[nodiscard]] int failure() const { return failure_; }

  /// False when the output is a pipe or terminal whose other end is closed.
  [[nodiscard]] bool isHeard() const;

  /// `text` in that colour if the output is a terminal with colours and NO_COLOR is not set; else
  /// `text` unchanged.
  [[nodiscard]] std::string coloured(Colour colour, std::string_view text) const;

 private:
  int output_;
  int error_;
  bool hasColours_;
  int failure_ = 0;
  std::string kept_;
};

}  // namespace quillstead::cli
