#include "HookTest.h"

#include <string>
#include <vector>

namespace quillstead {
namespace {

class ParentTag : public HookTest {
 protected:
  [[nodiscard]] std::string answerOf(const std::string& payload) const {
    const HookEnd end = run(harness("cursor"), "pretool", payload);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    return end.output;
  }

  [[nodiscard]] std::string answerTo(const std::string& input, const std::string& session) const {
    return answerOf(R"({"tool_name":"Task","session_id":)" + jsonString(session) +
                    R"(,"tool_input":)" + input + "}");
  }
};

TEST_F(ParentTag, StandsBehindThePromptOfASubAgent) {
  EXPECT_THAT(
      answerOf(R"({"tool_name":"Task","session_id":"s1","tool_input":{"prompt":"go","x":1}})"),
      isPretoolAnswer(R"({"updated_input":{"prompt":"go\n\n[qs-parent:s1]","x":1}})"));
}

TEST_F(ParentTag, LeavesSlashesAsTheyAre) {
  EXPECT_EQ(answerTo(R"({"prompt":"a\/b/c"})", "s/1"),
            "{\"updated_input\":{\"prompt\":\"a/b/c\\n\\n[qs-parent:s/1]\"}}\n");
}

TEST_F(ParentTag, HoldsTheSessionAsItIs) {
  for (const std::string session : {" s1 ", "\ts\n", "]", "[qs-parent:x]", "ü🙂\"\\"}) {
    EXPECT_THAT(answerTo(R"({"prompt":"go"})", session),
                isPretoolAnswer(R"({"updated_input":{"prompt":)" +
                                jsonString("go\n\n[qs-parent:" + session + "]") + "}}"));
  }
}

TEST_F(ParentTag, IsAddedToWhateverThePromptIs) {
  for (const std::string prompt : {"", " ", "ends in\n\n", "go\n\n[qs-parent:s1]",
                                   "go\n\n[qs-parent:other]", "ü🙂\u2028"}) {
    EXPECT_THAT(answerTo(R"({"prompt":)" + jsonString(prompt) + "}", "s1"),
                isPretoolAnswer(R"({"updated_input":{"prompt":)" +
                                jsonString(prompt + "\n\n[qs-parent:s1]") + "}}"));
  }
}

TEST_F(ParentTag, ChangesNothingElseInTheInput) {
  const std::string rest = R"("a":[1,2.50,{"prompt":"inner"}],"z":null,"_quillstead_session":"x")";
  const std::string output = answerTo(R"({"first":true,"prompt":"p",)" + rest + "}", "s");
  EXPECT_THAT(output,
              isOrderedJSON(R"({"updated_input":{"first":true,"prompt":"p\n\n[qs-parent:s]",)" +
                            rest + "}}"));
  EXPECT_NE(output.find(rest), std::string::npos);
}

TEST_F(ParentTag, IsWrittenOnceHoweverOftenThePromptComes) {
  for (const std::string input :
       {R"({"prompt":"one","x":1,"prompt":"two"})", R"({"prompt":5,"x":1,"\u0070rompt":"two"})",
        R"({"pro\u006Dpt":"one","x":1,"prompt":{},"prompt":"two"})"}) {
    const std::string output = answerTo(input, "s");
    EXPECT_THAT(output,
                isPretoolAnswer(R"({"updated_input":{"prompt":"two\n\n[qs-parent:s]","x":1}})"));
    const std::string wrapper = R"({"updated_input":)";
    ASSERT_TRUE(output.starts_with(wrapper));
    EXPECT_THAT(writtenKeys(std::string_view(output).substr(wrapper.size())),
                ::testing::UnorderedElementsAre("prompt", "x"));
  }
}

TEST_F(ParentTag, NeedsAPromptThatIsAText) {
  for (const std::string input :
       {"{}", R"({"x":1})", R"({"prompt":5})", R"({"prompt":null})", R"({"prompt":["go"]})",
        R"({"prompt":{"prompt":"go"}})", R"({"prompt":"go","prompt":7})", R"({"Prompt":"go"})",
        "[]", "null", R"("go")", R"([{"prompt":"go"}])"}) {
    EXPECT_EQ(answerTo(input, "s1"), "{}\n") << input;
  }
  EXPECT_EQ(answerOf(R"({"tool_name":"Task","session_id":"s1"})"), "{}\n");
}

TEST_F(ParentTag, NeedsASession) {
  for (const std::string session : {"", "  ", "\n\t", "\u00a0\u2003"}) {
    EXPECT_EQ(answerTo(R"({"prompt":"go"})", session), "{}\n");
  }
  const std::string start = R"({"tool_name":"Task","tool_input":{"prompt":"go","session_id":"s"})";
  EXPECT_EQ(answerOf(start + "}"), "{}\n");
  EXPECT_EQ(answerOf(start + R"(,"session_id":7})"), "{}\n");
  EXPECT_EQ(answerOf(start + R"(,"session_id":null})"), "{}\n");
  EXPECT_EQ(answerOf(start + R"(,"sessionID":"s","agent_id":"s"})"), "{}\n");
}

TEST_F(ParentTag, IsForTheToolOfThatNameAlone) {
  for (const std::string tool : {"task", "TASK", "Task ", " Task", "Tasks", "MCP:Task", ""}) {
    EXPECT_EQ(answerOf(R"({"tool_name":)" + jsonString(tool) +
                       R"(,"session_id":"s1","tool_input":{"prompt":"go"}})"),
              "{}\n");
  }
}

TEST_F(ParentTag, TakesTheLastOfAKeyThatComesTwice) {
  EXPECT_THAT(answerOf(R"({"tool_name":"x","session_id":"one","tool_input":5,"tool_name":"Task",)"
                       R"("session\u005fid":"two","tool_input":{"prompt":"go"}})"),
              isPretoolAnswer(R"({"updated_input":{"prompt":"go\n\n[qs-parent:two]"}})"));
  EXPECT_EQ(answerOf(R"({"tool_name":"Task","session_id":"one","session_id":" ",)"
                     R"("tool_input":{"prompt":"go"}})"),
            "{}\n");
}

TEST_F(ParentTag, IsNotForOtherHarnesses) {
  for (const Harness& harness : harnesses()) {
    if (harness.name == "cursor") continue;
    EXPECT_EQ(
        run(harness, "pretool",
            R"({"tool_name":"Task","session_id":"s","agent_id":"a","tool_input":{"prompt":"go"}})")
            .output,
        "{}\n");
  }
}

}  // namespace
}  // namespace quillstead
