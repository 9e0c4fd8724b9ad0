#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// A line of shell text that runs one program and nothing else.
struct ShellCommand {
  std::string assignments;             ///< before the program, unchanged: "A='b' "
  std::string program;                 ///< without quotes; a variable in it stays: "$HOME/bin/x"
  std::vector<std::string> arguments;  ///< without quotes

  /// Absent for anything else: several commands, pipes, redirections, substitutions, a comment.
  static std::optional<ShellCommand> parse(std::string_view text);

  /// Whether a variable of that name is set for the program.
  [[nodiscard]] bool sets(std::string_view variable) const;
};

/// `text` as one shell word, in single quotes.
std::string inSingleQuotes(std::string_view text);

/// The same, but unchanged when it has only letters, digits and "/._-".
std::string quotedWhereNeeded(std::string_view text);

}  // namespace quillstead::cli
