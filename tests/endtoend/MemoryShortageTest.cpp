#include "HookTest.h"

#include <set>
#include <string>
#include <vector>

namespace quillstead {
namespace {

constexpr std::size_t kibibyte = 1024;

/// Address space that a run may have beyond what the program needs to start at all.
const std::vector<std::size_t> allowances{0,      4,      16,     64,     132,    256,
                                          512,    1'024,  2'048,  4'096,  6'144,  8'192,
                                          12'288, 16'384, 24'576, 32'768, 65'536, 262'144};

class MemoryShortage : public HookTest {
 protected:
  void SetUp() override {
#if !defined(__linux__)
    GTEST_SKIP() << "needs a system that limits a program's address space";
#endif
    if (isSanitized) GTEST_SKIP() << "sanitizers reserve address space beyond any limit";
    least_ = leastAddressSpace();
  }

  /// In how little address space, to a page, the program starts and refuses its arguments.
  [[nodiscard]] std::size_t leastAddressSpace() const {
    HookStart start = starting({"--harness", "nobody"});
    std::size_t tooLittle = 0;
    std::size_t enough = std::size_t{64} * 1'024 * kibibyte;
    while (enough - tooLittle > 4 * kibibyte) {
      start.addressSpace = (tooLittle + enough) / 2;
      (runHook(start, "").status == 0 ? enough : tooLittle) = *start.addressSpace;
    }
    return enough;
  }

  [[nodiscard]] HookStart startingIn(std::size_t allowance, const Harness& harness,
                                     const std::string& slot) const {
    HookStart start = starting(harness, slot);
    start.addressSpace = least_ + allowance * kibibyte;
    return start;
  }

  std::size_t least_ = 0;
};

TEST_F(MemoryShortage, EndsInAnAnswerOrTheSilence) {
  const std::string rules(7'000, 'r');
  const std::string memory = memoryBlock("", {"card"});
  server.answer(rulesTool, rules, rulesMeta);
  server.answer(memoryTool, memory, cardsMeta({"card"}));
  const std::string prompt(1'000'000, 'p');
  for (const Harness& harness : harnesses()) {
    const std::set<std::string> answers{
        harness.silentOutput(), runHook(starting(harness, ""), harness.payload({})).output,
        runHook(starting(harness, "rules"), "{}").output,
        runHook(starting(harness, "recall"), harness.payload({})).output};
    ASSERT_EQ(answers.size(), 4U);
    std::set<std::string> given;
    for (const std::size_t allowance : allowances) {
      SCOPED_TRACE(harness.name + " " + std::to_string(allowance));
      const HookEnd end =
          runHook(startingIn(allowance, harness, ""), harness.payload({.prompt = prompt}));
      EXPECT_EQ(end.status, 0);
      EXPECT_TRUE(answers.contains(end.output)) << end.output;
      given.insert(end.output);
    }
    EXPECT_TRUE(given.contains(harness.silentOutput())) << "memory was never short";
    EXPECT_GT(given.size(), 1U) << "memory was always short";
  }
}

TEST_F(MemoryShortage, BeforeAToolEndsInTheStampOrAnEmptyObject) {
  const std::string text(3'000'000, 't');
  const std::string input = R"("tool_input":{"t":")" + text + R"("}})";
  for (const Harness& harness : harnesses()) {
    const bool isCursor = harness.name == "cursor";
    const std::string payload =
        (isCursor ? R"({"tool_name":"MCP:grab","session_id":"i",)"
                  : R"({"tool_name":"mcp__quillstead__grab","agent_id":"i",)") +
        input;
    const std::set<std::string> answers{"{}\n", run(harness, "pretool", payload).output};
    ASSERT_EQ(answers.size(), 2U);
    std::set<std::string> given;
    for (const std::size_t allowance : allowances) {
      SCOPED_TRACE(harness.name + " " + std::to_string(allowance));
      const HookEnd end = runHook(startingIn(allowance, harness, "pretool"), payload);
      EXPECT_EQ(end.status, 0);
      EXPECT_TRUE(answers.contains(end.output)) << end.output.substr(0, 100);
      given.insert(end.output);
    }
    EXPECT_EQ(given.size(), 2U) << "memory was always or never short";
  }
}

}  // namespace
}  // namespace quillstead
