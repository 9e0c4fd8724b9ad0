#pragma once

#include "support/JSON/Value.h"
#include "support/OS/Environment.h"
#include "unit/helpers/Files.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server::test {

/// What a tool answered.
struct Answer {
  std::string text;
  JSON::Object meta;
  bool isError = false;
  std::optional<std::int64_t> errorCode;  ///< of a JSON-RPC error, which has only a text besides

  [[nodiscard]] std::string metaText(std::string_view key) const;  ///< empty when it is no text
  [[nodiscard]] std::optional<std::int64_t> metaNumber(std::string_view key) const;
  [[nodiscard]] std::vector<std::int64_t> metaNumbers(std::string_view key) const;
};

/// Takes the line that answers "tools/call" apart.
Answer answerIn(std::string_view line);

/// A home with a personal store and a trusted project, all in a directory of one test's own.
class MemoryStage {
 public:
  MemoryStage();

  [[nodiscard]] std::string path(std::string_view name) const { return directory_ / name; }
  [[nodiscard]] std::string project() const { return path("project"); }

  /// Writes a file, making the directories above it.
  void write(const std::string& name, std::string_view text) const;
  void writePersonalCard(const std::string& name, std::string_view text) const;
  void writeProjectCard(const std::string& name, std::string_view text) const;

  /// "NAME=value" entries that keep a server to this stage.
  [[nodiscard]] const std::vector<std::string>& environment() const { return environment_; }

  /// Sets or replaces a variable.
  void set(std::string_view name, std::string_view value);
  void unset(std::string_view name);

  /// Calls a tool within this process; `arguments`: a JSON object, "cwd" being added.
  [[nodiscard]] Answer call(std::string_view tool, std::string_view arguments = "{}") const;

  /// Answers one line within this process; empty when there is no answer.
  [[nodiscard]] std::string answerTo(std::string_view line) const;

  /// The titles of the cards recalled for `prompt`, in their order.
  [[nodiscard]] std::vector<std::string> recalled(std::string_view prompt) const;

  /// Makes all sessions as old as if that much time had passed.
  void letTimePass(std::chrono::milliseconds time) const;

  /// The files in which sessions are remembered.
  [[nodiscard]] std::vector<std::string> sessionFiles() const;

  /// Where the indexes are, relative to the stage, unless the environment has chosen otherwise.
  static std::string indexPlace();

  /// The paths of all index files there.
  [[nodiscard]] std::vector<std::string> indexFiles() const;

  /// The path of the only index file; the test fails when there is not exactly one.
  [[nodiscard]] std::string indexFile() const;

 private:
  unit::TemporaryDirectory directory_;
  std::vector<std::string> environment_;
};

/// `text` as a JSON string with its quotes.
std::string jsonText(std::string_view text);

/// One "tools/call" request, without a line end.
std::string callRequest(std::int64_t id, std::string_view tool, std::string_view arguments);

}  // namespace quillstead::server::test
