#pragma once

#include "Harness.h"
#include "HookRun.h"
#include "JSONText.h"
#include "ServerScript.h"
#include "TelemetryRecord.h"
#include "Workspace.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// Runs the hook with the scripted server behind it and a log of the test's own.
class HookTest : public ::testing::Test {
 protected:
  /// A start with these arguments; the environment names the server and the log.
  [[nodiscard]] HookStart starting(std::vector<std::string> arguments) const;

  /// A start for `slot`; the empty slot means none.
  [[nodiscard]] HookStart starting(const Harness& harness, const std::string& slot) const;

  HookEnd run(const Harness& harness, const std::string& slot, std::string_view payload) const;

  /// The log, line by line. A last line without its line feed fails the test.
  [[nodiscard]] std::vector<std::string> logLines() const;

  /// The only line of the log; the test fails when it has another form or is not alone.
  [[nodiscard]] TelemetryRecord onlyRecord() const;

  /// Empties the log, so that one test can look at several runs one by one.
  void forgetLog() const;

  Workspace workspace;
  ServerScript server{workspace.path("server")};
};

/// A rules block as the server gives it: `rules`, and, when there is one, an index behind them.
std::string rulesBlock(std::string_view rules, std::string_view index = {});

/// A memory block: what the server says first, then its cards.
std::string memoryBlock(std::string_view header, const std::vector<std::string>& cards);

/// The metadata of an answer with such cards.
std::string cardsMeta(const std::vector<std::string>& cards, std::string_view more = {});

/// Metadata of a rules answer whose index is so long.
std::string indexedMeta(std::size_t indexSpan);

inline constexpr std::string_view rulesMeta = R"({"quillstead/replyKind":"rules"})";
inline constexpr std::string_view emptyMeta = R"({"quillstead/replyKind":"empty"})";

inline constexpr std::string_view rulesTool = "rules_get";
inline constexpr std::string_view memoryTool = "memory_get_relevant";

}  // namespace quillstead
