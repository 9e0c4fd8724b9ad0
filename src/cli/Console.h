#pragma once

#include "support/OS/Environment.h"

#include <string>
#include <string_view>

namespace quillstead::cli {

enum class Colour { red, green, yellow, blue, faint, bold };

/// Where a command's words go: results to standard output, complaints to standard error.
class Console {
 public:
  /// `output` and `error` are descriptors, which stay the caller's.
  Console(int output, int error, const OS::Environment& environment);

  /// Keeps `text` until there is enough of it, or `flush`.
  void print(std::string_view text);

  /// Writes "quillstead: ", `text` and a line end to the error stream, what was printed before it.
  void complain(std::string_view text);

  /// Writes `text` as it is, likewise.
  void printError(std::string_view text);

  /// Writes what was kept. False when something that was printed could not be written.
  bool flush();

  /// False when the output is a pipe or a terminal that nobody reads any more.
  [[nodiscard]] bool isHeard() const;

  /// `text` in that colour when the output is a terminal that shows colours and the user wants
  /// them (NO_COLOR is not set); else `text` as it is.
  [[nodiscard]] std::string coloured(Colour colour, std::string_view text) const;

 private:
  int output_;
  int error_;
  bool hasColours_;
  bool isWhole_ = true;
  std::string kept_;
};

}  // namespace quillstead::cli
