#include "HookTest.h"

#include <cstdlib>

namespace quillstead {

HookStart HookTest::starting(std::vector<std::string> arguments) const {
  HookStart start;
  start.arguments = std::move(arguments);
  start.environment = {{"PATH", "/usr/bin:/bin"},
                       {"HOME", workspace.path()},
                       {"QUILLSTEAD_MCP_BIN", childExecutable("ScriptedServer")},
                       {"QUILLSTEAD_HOOK_LOG", workspace.path("hook.log")},
                       {"QUILLSTEAD_TEST_SERVER", server.directory()}};
  // A fault is the belt's business, and without a belt the system's, not the sanitizer's.
  if (isSanitized) {
    start.environment["ASAN_OPTIONS"] =
        "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:handle_sigill=0:handle_abort=0:"
        "handle_sigtrap=0";
  }
  return start;
}

HookStart HookTest::starting(const Harness& harness, const std::string& slot) const {
  std::vector<std::string> arguments{"--harness", harness.name};
  if (!slot.empty()) arguments.insert(arguments.end(), {"--slot", slot});
  return starting(std::move(arguments));
}

HookEnd HookTest::run(const Harness& harness, const std::string& slot,
                      std::string_view payload) const {
  return runHook(starting(harness, slot), payload);
}

std::vector<std::string> HookTest::logLines() const {
  const std::string log = contentOf(workspace.path("hook.log"));
  EXPECT_TRUE(log.empty() || log.ends_with('\n')) << log;
  return piecesOf(log, '\n');
}

TelemetryRecord HookTest::onlyRecord() const {
  const auto lines = logLines();
  EXPECT_EQ(lines.size(), 1U);
  if (lines.empty()) return {};
  const auto record = telemetryRecord(lines.front());
  EXPECT_TRUE(record) << lines.front();
  EXPECT_TRUE(!record || record->addsUp()) << lines.front();
  return record.value_or(TelemetryRecord{});
}

void HookTest::forgetLog() const { writeFile(workspace.path("hook.log"), ""); }

std::string rulesBlock(std::string_view rules, std::string_view index) {
  std::string block = "<user-rules>\n" + std::string(rules);
  if (!index.empty()) block += "\n" + std::string(index);
  return block + "\n</user-rules>";
}

std::string memoryBlock(std::string_view header, const std::vector<std::string>& cards) {
  std::string block = "<quillstead-memory>\n" + std::string(header);
  for (const std::string& card : cards) block += "\n\n" + card;
  return block + "\n</quillstead-memory>";
}

std::string cardsMeta(const std::vector<std::string>& cards, std::string_view more) {
  std::string spans;
  for (const std::string& card : cards) {
    spans += (spans.empty() ? "" : ",") + std::to_string(card.size());
  }
  return R"({"quillstead/replyKind":"cards","quillstead/cardCount":)" +
         std::to_string(cards.size()) + R"(,"quillstead/cardSpans":[)" + spans + "]" +
         std::string(more) + "}";
}

std::string indexedMeta(std::size_t indexSpan) {
  return R"({"quillstead/replyKind":"rules","quillstead/indexSpan":)" + std::to_string(indexSpan) +
         "}";
}

}  // namespace quillstead
