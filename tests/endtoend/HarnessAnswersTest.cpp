#include "HookTest.h"

#include <string>
#include <vector>

namespace quillstead {
namespace {

const std::string rules = "Names are /sentences/.";
const std::string ruleIndex = "- names: \"tests\"\n- ümlaut 🙂";
const std::vector<std::string> cards{"card one: a/b", "card two:\nof two lines", "card three"};
const std::string shortcut = "<quillstead-shortcut>\nsee /s\n</quillstead-shortcut>";
const std::string now = "<quillstead-now>\nended /n\n</quillstead-now>";

/// What goes out at a slot when the server has all there can be.
std::string contextAt(const std::string& slot) {
  std::string recalled = shortcut + "\n\n" + now + "\n\n" + memoryBlock("What we know:", cards);
  if (slot == "rules") return rulesBlock(rules);
  if (slot == "index") return rulesBlock(ruleIndex);
  if (slot == "recall") return recalled;
  return rulesBlock(rules, ruleIndex) + "\n\n" + recalled;
}

class HarnessAnswers : public HookTest {
 protected:
  void scriptEverything() {
    server.answer(rulesTool, rulesBlock(rules, ruleIndex), indexedMeta(ruleIndex.size()));
    server.answer(memoryTool, memoryBlock("What we know:", cards),
                  cardsMeta(cards, R"(,"quillstead/shortcut":)" + jsonString(shortcut) +
                                       R"(,"quillstead/now":)" + jsonString(now)));
  }

  void expectSilence(const HookEnd& end, const Harness& harness) const {
    EXPECT_EQ(end.output, harness.silentOutput()) << harness.name;
    EXPECT_EQ(end.status, 0) << harness.name;
    EXPECT_EQ(end.error, "") << harness.name;
  }
};

TEST_F(HarnessAnswers, CarryWhatEachSlotIsFor) {
  scriptEverything();
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) {
      SCOPED_TRACE(harness.name + " " + slot);
      const HookEnd end = run(harness, slot, harness.payload({}));
      EXPECT_THAT(end.output, isAnswer(harness.envelope(contextAt(slot))));
      EXPECT_EQ(end.status, 0);
      EXPECT_EQ(end.error, "");
    }
  }
}

TEST_F(HarnessAnswers, CarryWhateverTextTheServerGives) {
  const std::string text =
      "\"\\/ \b\f\n\r\t \x01\x1f\x7f ü 日本 🙂 \u2028\u2029 </script> \\u0041";
  server.answer(rulesTool, text, rulesMeta);
  for (const Harness& harness : harnesses()) {
    const HookEnd end = run(harness, "rules", "{}");
    EXPECT_THAT(end.output, isAnswer(harness.envelope(text))) << harness.name;
    EXPECT_NE(end.output.find("<\\/script>"), std::string::npos);
  }
}

TEST_F(HarnessAnswers, AreSilenceWhenTheServerHasNothing) {
  server.answer(rulesTool, "", emptyMeta);
  server.answer(memoryTool, "", emptyMeta);
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) {
      expectSilence(run(harness, slot, harness.payload({})), harness);
    }
  }
}

TEST_F(HarnessAnswers, AreSilenceWhenThereIsNoServer) {
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) {
      HookStart start = starting(harness, slot);
      start.environment["QUILLSTEAD_MCP_BIN"] = "/nonexistent/server";
      expectSilence(runHook(start, harness.payload({})), harness);
    }
  }
}

TEST_F(HarnessAnswers, AreSilenceWhenTheServerMakesNoSense) {
  const std::vector<std::string> table{"",   "\n\n",     "nonsense",  "{}",
                                       "[]", "\xff\xfe", "{\"id\":2}"};
  for (const Harness& harness : harnesses()) {
    for (const std::string& output : table) {
      server.set(rulesTool, "output", output);
      server.set(memoryTool, "output", output);
      expectSilence(run(harness, "", harness.payload({})), harness);
    }
  }
}

TEST_F(HarnessAnswers, CarryTheMemoryAloneWhenThereAreNoRules) {
  scriptEverything();
  server.answer(rulesTool, "", emptyMeta);
  for (const Harness& harness : harnesses()) {
    const HookEnd end = run(harness, "", harness.payload({}));
    EXPECT_THAT(end.output, isAnswer(harness.envelope(contextAt("recall")))) << harness.name;
  }
}

TEST_F(HarnessAnswers, CarryTheRulesAloneWhenThereIsNoPrompt) {
  scriptEverything();
  for (const Harness& harness : harnesses()) {
    const HookEnd end = run(harness, "", harness.payload({.prompt = " \n\t "}));
    EXPECT_THAT(end.output, isAnswer(harness.envelope(rulesBlock(rules, ruleIndex))))
        << harness.name;
    expectSilence(run(harness, "recall", harness.payload({.prompt = ""})), harness);
  }
}

}  // namespace
}  // namespace quillstead
