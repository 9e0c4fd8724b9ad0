#pragma once

#include <span>
#include <string>
#include <vector>

namespace quillstead::unit {

/// Arguments as `main` gets them, without the program's path.
class CommandLine {
 public:
  explicit CommandLine(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {
    for (std::string& argument : arguments_) pointers_.push_back(argument.data());
  }
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine() = default;

  [[nodiscard]] std::span<char* const> arguments() const { return pointers_; }

 private:
  std::vector<std::string> arguments_;
  std::vector<char*> pointers_;
};

}  // namespace quillstead::unit
