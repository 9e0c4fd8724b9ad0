#pragma once

#include "server/endtoend/ProgramRun.h"
#include "unit/helpers/Files.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli::test {

/// A home of one test's own, and the built command run in it.
class MadeUpHome {
 public:
  MadeUpHome();

  /// The path of something in the home.
  [[nodiscard]] std::string path(std::string_view name) const;

  /// Writes a file, making the directories above it.
  void write(const std::string& name, std::string_view text) const;

  /// Sets or replaces a variable of the environment; at first there are HOME and PATH.
  void set(std::string_view name, std::string_view value);

  /// "NAME=value" entries.
  [[nodiscard]] const std::vector<std::string>& environment() const { return environment_; }

  /// Runs `quillstead` with these arguments, to its end.
  [[nodiscard]] server::test::ProgramEnd run(std::vector<std::string> arguments) const;

 private:
  unit::TemporaryDirectory directory_;
  std::vector<std::string> environment_;
};

}  // namespace quillstead::cli::test
