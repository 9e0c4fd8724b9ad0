#pragma once

#include <string>
#include <vector>

/// A description of a command line, for help, man pages and completions.
namespace quillstead::cli {

/// An option or a positional argument.
struct OptionText {
  std::vector<std::string> names;    ///< "-h", "--help"; empty for a positional argument
  std::string value;                 ///< the placeholder of its value, "FILE"; empty for a flag
  std::vector<std::string> choices;  ///< the possible values; empty: any
  std::string summary;
  bool isRepeated = false;  ///< it may be given any number of times
  bool isRequired = false;
};

struct CommandText {
  std::string name;
  std::string summary;  ///< one line, no full stop
  std::string details;  ///< paragraphs, separated by blank lines; may be empty
  std::vector<OptionText> options;
  std::vector<OptionText> words;  ///< positional arguments, in order
};

struct ProgramText {
  CommandText own;  ///< the options without a command
  std::string version;
  std::vector<CommandText> commands;
};

}  // namespace quillstead::cli
