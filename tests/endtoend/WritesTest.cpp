#include "HookTest.h"
#include "ToolCall.h"

#include <string>

namespace quillstead {
namespace {

class Writes : public HookTest {
 protected:
  void SetUp() override {
#if !defined(__linux__)
    GTEST_SKIP() << "needs sockets that keep writes apart";
#endif
    server.answer(rulesTool, rulesBlock(std::string(6'000, 'r')), rulesMeta);
    server.set(memoryTool, "error", "complaint\nof two lines");
    server.set(memoryTool, "status", 1);
  }

  [[nodiscard]] static HookEnd counted(HookStart start, std::string_view input) {
    start.countsWrites = true;
    return runHook(start, input);
  }
};

TEST_F(Writes, OfAnAnswerAreOne) {
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) {
      const HookEnd end = counted(starting(harness, slot), harness.payload({}));
      EXPECT_EQ(end.outputWrites, end.output.empty() ? 0 : 1) << harness.name << slot;
      EXPECT_EQ(end.output.empty(), slot != "" && slot != "rules" && !harness.silence);
    }
    const HookEnd end = counted(starting(harness, "recall"), "nonsense");
    EXPECT_EQ(end.output, harness.silentOutput());
    EXPECT_EQ(end.outputWrites, harness.silence ? 1 : 0);
  }
}

TEST_F(Writes, OfARecordOnStandardErrorAreOne) {
  const Harness& codex = harness("codex");
  const HookEnd end =
      counted(starting(codex, "recall"), codex.payload({.directory = "/nonexistent"}));
  EXPECT_THAT(end.error, ::testing::HasSubstr("WARNING"));
  EXPECT_THAT(end.error, ::testing::EndsWith("said (exit 1):\ncomplaint\nof two lines\n"));
  EXPECT_EQ(end.errorWrites, 2);
}

TEST_F(Writes, OfARefusalAreOneOnEachStream) {
  const HookEnd end = counted(starting({"--harness", "nobody"}), "");
  EXPECT_EQ(end.outputWrites, 1);
  EXPECT_EQ(end.errorWrites, 1);
}

TEST_F(Writes, OfAStampAreOne) {
  for (const ToolCall& call : toolCalls()) {
    for (const std::string& payload :
         {call.payload(R"({"x":")" + std::string(30'000, 'x') + "\"}"), std::string("{}")}) {
      const HookEnd end = counted(starting(call.harness, "pretool"), payload);
      EXPECT_EQ(end.outputWrites, 1);
      EXPECT_EQ(end.errorWrites, 0);
      EXPECT_TRUE(end.output.ends_with("}\n"));
    }
  }
}

TEST_F(Writes, OfTheBeltAreOne) {
  for (const Harness& harness : harnesses()) {
    HookStart start = starting(harness, "pretool");
    start.environment["QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS"] = "1";
    const HookEnd end = counted(start, "");
    EXPECT_EQ(end.output, "{}\n");
    EXPECT_EQ(end.outputWrites, 1);
  }
}

}  // namespace
}  // namespace quillstead
