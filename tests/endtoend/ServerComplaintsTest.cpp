#include "HookTest.h"

#include <csignal>
#include <string>
#include <vector>

namespace quillstead {
namespace {

class ServerComplaints : public HookTest {
 protected:
  /// What the hook writes to standard error when the rules server complains so and exits with 1.
  [[nodiscard]] std::string forwarded(std::string_view complaint) {
    server.set(rulesTool, "error", complaint);
    server.set(rulesTool, "status", 1);
    const HookEnd end = run(harness("codex"), "rules", "{}");
    EXPECT_EQ(end.output, harness("codex").silentOutput());
    return end.error;
  }

  static std::string record(const std::string& tail, const std::string& status = " (exit 1)") {
    return "quillstead-hook: the rules_get lane's MCP child said" + status + ":\n" + tail + "\n";
  }
};

TEST_F(ServerComplaints, AreForwardedWithTheStatus) {
  EXPECT_EQ(forwarded("first line\nsecond line\n"), record("first line\nsecond line"));
  const std::vector<std::pair<int, std::string>> table{
      {3, " (exit 3)"}, {127, " (exit 127)"}, {255, " (exit 255)"}};
  for (const auto& [status, part] : table) {
    server.set(rulesTool, "status", status);
    EXPECT_EQ(run(harness("codex"), "rules", "{}").error, record("first line\nsecond line", part));
  }
}

TEST_F(ServerComplaints, AreForwardedWithTheSignalAsANegativeStatus) {
  server.set(rulesTool, "error", "going down");
  for (const int signal : {SIGKILL, SIGTERM, SIGSEGV, SIGABRT}) {
    server.set(rulesTool, "signal", signal);
    EXPECT_EQ(run(harness("codex"), "rules", "{}").error,
              record("going down", " (exit -" + std::to_string(signal) + ")"));
  }
}

TEST_F(ServerComplaints, AreForwardedWithoutAStatusWhenTimeRanOut) {
  server.answer(rulesTool, "", emptyMeta);
  server.set(memoryTool, "error", "\nstill thinking\n\n");
  server.sleepForEver(memoryTool);
  const HookEnd end = run(harness("codex"), "recall", R"({"prompt":"x"})");
  EXPECT_EQ(end.error,
            "quillstead-hook: the memory_get_relevant lane's MCP child said:\nstill thinking\n");
}

TEST_F(ServerComplaints, AreForwardedInEveryHarness) {
  server.set(rulesTool, "error", "no\n");
  server.set(rulesTool, "status", 1);
  for (const Harness& harness : harnesses()) {
    const HookEnd end = run(harness, "", harness.payload({}));
    EXPECT_EQ(end.error, record("no"));
    EXPECT_EQ(end.output, harness.silentOutput());
  }
}

TEST_F(ServerComplaints, OfTheMemoryToolNameIt) {
  server.answer(rulesTool, "", emptyMeta);
  server.set(memoryTool, "error", "no");
  server.set(memoryTool, "status", 3);
  const HookEnd end = run(harness("codex"), "recall", R"({"prompt":"x"})");
  EXPECT_EQ(end.error,
            "quillstead-hook: the memory_get_relevant lane's MCP child said (exit 3):\nno\n");
}

TEST_F(ServerComplaints, AreNotForwardedWhenTheServerExitsCleanly) {
  server.set(rulesTool, "error", "a warning\n");
  server.set(rulesTool, "output", "nonsense\n");
  EXPECT_EQ(run(harness("codex"), "rules", "{}").error, "");
  server.answer(rulesTool, "R", rulesMeta);
  EXPECT_EQ(run(harness("codex"), "rules", "{}").error, "");
}

TEST_F(ServerComplaints, ThatAreBlankAreDropped) {
  for (const std::string complaint :
       {"", " ", "\n", "\n \n\t\r\n", "\u00a0\u2003\n\u2028\u2029\u0085"}) {
    EXPECT_EQ(forwarded(complaint), "") << ::testing::PrintToString(complaint);
  }
}

TEST_F(ServerComplaints, AreTrimmedAndCutToTheirLastFiveLines) {
  const std::vector<std::pair<std::string, std::string>> table{
      {"1\n2\n3\n4\n5\n6\n7\n", "3\n4\n5\n6\n7"},
      {"1\n2\n3\n4\n5\n", "1\n2\n3\n4\n5"},
      {"1\n2\n3\n4\n5\n6", "2\n3\n4\n5\n6"},
      {"\n\n  1\n\n2  \n \n", "1\n\n2"},
      {"1\n\n\n\n\n2", "\n\n\n\n2"},
      {"1\n2\n3\n4\n5\n\n\n6\n\n", "4\n5\n\n\n6"},
      {"one", "one"},
      {"\u00a0one\u2028", "one"},
  };
  for (const auto& [complaint, tail] : table) EXPECT_EQ(forwarded(complaint), record(tail));
}

TEST_F(ServerComplaints, AreCutToTheirFirstThousandCharacters) {
  EXPECT_EQ(forwarded(std::string(3'000, 'x')), record(std::string(1'000, 'x')));
  EXPECT_EQ(forwarded(std::string(1'000, 'x')), record(std::string(1'000, 'x')));

  // The five lines are chosen first, the characters counted after.
  std::string lines;
  for (const char line : {'1', '2', '3', '4', '5', '6'}) lines += std::string(400, line) + "\n";
  EXPECT_EQ(forwarded(lines), record(std::string(400, '2') + "\n" + std::string(400, '3') + "\n" +
                                     std::string(198, '4')));
}

TEST_F(ServerComplaints, AreCutBetweenCharactersAsUsersSeeThem) {
  const std::vector<std::string> characters{
      "ü", "e\u0301", "日", "🙂", "👩\u200d👩\u200d👧\u200d👦", "🇨🇭", "👍🏽", "각", "\r\n",
  };
  for (const std::string& character : characters) {
    std::string complaint = "<";
    std::string tail = "<";
    for (int count = 0; count < 1'200; ++count) complaint += character;
    for (int count = 0; count < 999; ++count) tail += character;
    EXPECT_EQ(forwarded(complaint + ">"), record(tail)) << ::testing::PrintToString(character);
  }
}

TEST_F(ServerComplaints, CountAsOneLineWhenTheyEndInCarriageReturns) {
  std::string complaint;
  for (int line = 1; line <= 9; ++line) complaint += std::to_string(line) + "\r\n";
  EXPECT_EQ(forwarded(complaint), record("1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8\r\n9"));
}

TEST_F(ServerComplaints, ShowInvalidBytesAsReplacementCharacters) {
  const std::vector<std::pair<std::string, std::string>> table{
      {"a\xff"
       "b",
       "a\uFFFDb"},
      {"\xc3", "\uFFFD"},
      {"\xe2\x82x", "\uFFFDx"},
      {"\xf0\x9f\x99\n", "\uFFFD"},
      {"\xff\xfe", "\uFFFD\uFFFD"},
      {"\xed\xa0\x80!", "\uFFFD\uFFFD\uFFFD!"},
  };
  for (const auto& [complaint, tail] : table) EXPECT_EQ(forwarded(complaint), record(tail));
}

TEST_F(ServerComplaints, AreLostWithoutHarmWhenNobodyListens) {
  server.set(rulesTool, "error", "no");
  server.set(rulesTool, "status", 1);
  const HookStart start = starting(harness("codex"), "rules");
  HookRun run(start);
  run.stopListeningToErrors();
  run.feed("{}");
  const HookEnd end = run.finish();
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.output, harness("codex").silentOutput());
  EXPECT_EQ(onlyRecord().trail, "slot=rules rules=MISS:no-envelope");
}

}  // namespace
}  // namespace quillstead
