#pragma once

#include <string>
#include <vector>

/// A command line, told so that help, man pages and completions can be made of it.
namespace quillstead::cli {

/// An option, or a word without a name.
struct OptionText {
  std::vector<std::string> names;    ///< "-h", "--help"; none for a word without a name
  std::string value;                 ///< what stands for its value, "FILE"; empty for a flag
  std::vector<std::string> choices;  ///< the values there are; empty: any
  std::string summary;
  bool isRepeated = false;  ///< a word that may be given any number of times
  bool isRequired = false;
};

struct CommandText {
  std::string name;
  std::string summary;  ///< one line, no full stop
  std::string details;  ///< paragraphs, a blank line between; may be empty
  std::vector<OptionText> options;
  std::vector<OptionText> words;  ///< in their order
};

struct ProgramText {
  CommandText own;  ///< what the program takes without a command
  std::string version;
  std::vector<CommandText> commands;
};

}  // namespace quillstead::cli
