#include "helpers/StampedDocument.h"
#include "hook/ParentTag.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

namespace quillstead::hook::ParentTag {
namespace {

using unit::parsedObject;

std::optional<std::string> answerTo(std::string_view payload) {
  return stampedDocument(std::string(payload),
                         [](JSON::ObjectView read, Decision /*decision*/) { return answer(read); });
}

/// The prompt in an answer to a "Task" payload with this session and prompt, both JSON texts.
std::string promptInAnswer(const std::string& session, const std::string& prompt) {
  const auto document = answerTo(R"({"tool_name":"Task","session_id":)" + session +
                                 R"(,"tool_input":{"prompt":)" + prompt + "}}");
  if (!document) return "no answer";
  const JSON::Object object = parsedObject(*document);
  const JSON::Object* const input = JSON::objectOf(object.find("updated_input"));
  const std::string* const text = input ? JSON::textOf(input->find("prompt")) : nullptr;
  return text ? *text : "no prompt";
}

TEST(ParentTag, PutsTheSessionBehindThePromptAndKeepsTheRest) {
  EXPECT_EQ(
      answerTo(R"({"tool_name":"Task","session_id":"s1","tool_input":{"prompt":"go","x":1}})"),
      R"({"updated_input":{"prompt":"go\n\n[qs-parent:s1]","x":1}})");
}

TEST(ParentTag, IsAbsentForWhatItCannotTag) {
  struct Case {
    const char* name;
    std::string_view payload;
  };
  for (const Case& one : {
           Case{"an empty payload", "{}"},
           Case{"no tool name", R"({"session_id":"s","tool_input":{"prompt":"p"}})"},
           Case{"a lower-case tool name",
                R"({"tool_name":"task","session_id":"s","tool_input":{"prompt":"p"}})"},
           Case{"another tool",
                R"({"tool_name":"Tasks","session_id":"s","tool_input":{"prompt":"p"}})"},
           Case{"a tool name with a blank",
                R"({"tool_name":"Task ","session_id":"s","tool_input":{"prompt":"p"}})"},
           Case{"a tool name that is no text",
                R"({"tool_name":["Task"],"session_id":"s","tool_input":{"prompt":"p"}})"},
           Case{"no tool input", R"({"tool_name":"Task","session_id":"s"})"},
           Case{"a tool input that is a text",
                R"({"tool_name":"Task","session_id":"s","tool_input":"prompt"})"},
           Case{"a tool input that is an array",
                R"({"tool_name":"Task","session_id":"s","tool_input":[{"prompt":"p"}]})"},
           Case{"a tool input that is null",
                R"({"tool_name":"Task","session_id":"s","tool_input":null})"},
           Case{"a tool input without prompt",
                R"({"tool_name":"Task","session_id":"s","tool_input":{"Prompt":"p"}})"},
           Case{"a numeric prompt",
                R"({"tool_name":"Task","session_id":"s","tool_input":{"prompt":5}})"},
           Case{"a null prompt",
                R"({"tool_name":"Task","session_id":"s","tool_input":{"prompt":null}})"},
           Case{"no session", R"({"tool_name":"Task","tool_input":{"prompt":"p"}})"},
           Case{"an empty session",
                R"({"tool_name":"Task","session_id":"","tool_input":{"prompt":"p"}})"},
           Case{"a blank session",
                R"({"tool_name":"Task","session_id":"  ","tool_input":{"prompt":"p"}})"},
           Case{"a session of line ends",
                R"({"tool_name":"Task","session_id":"\r\n\u2028","tool_input":{"prompt":"p"}})"},
           Case{"a numeric session",
                R"({"tool_name":"Task","session_id":7,"tool_input":{"prompt":"p"}})"},
           Case{"a session inside the tool input",
                R"({"tool_name":"Task","tool_input":{"prompt":"p","session_id":"s"}})"},
       }) {
    EXPECT_EQ(answerTo(one.payload), std::nullopt) << one.name;
  }
}

TEST(ParentTag, InsertsTheSessionUntrimmed) {
  EXPECT_EQ(promptInAnswer(R"(" s1 ")", R"("go")"), "go\n\n[qs-parent: s1 ]");
  EXPECT_EQ(promptInAnswer(R"("\ns]1\t")", R"("go")"), "go\n\n[qs-parent:\ns]1\t]");
}

TEST(ParentTag, TagsAnEmptyPrompt) {
  EXPECT_EQ(promptInAnswer(R"("s1")", R"("")"), "\n\n[qs-parent:s1]");
}

TEST(ParentTag, TagsATaggedPromptAgain) {
  EXPECT_EQ(promptInAnswer(R"("s1")", R"("go\n\n[qs-parent:s1]")"),
            "go\n\n[qs-parent:s1]\n\n[qs-parent:s1]");
}

TEST(ParentTag, LeavesSlashesUnescaped) {
  EXPECT_EQ(answerTo(R"({"tool_name":"Task","session_id":"a/b","tool_input":{"prompt":"c\/d"}})"),
            R"({"updated_input":{"prompt":"c/d\n\n[qs-parent:a/b]"}})");
}

TEST(ParentTag, LeavesNoSecondPromptBesideTheTaggedOne) {
  EXPECT_EQ(answerTo(R"({"tool_name":"Task","session_id":"s","tool_input":
                         {"prompt":"first","x":1,"pro\u006dpt":"last"}})"),
            R"({"updated_input":{"prompt":"last\n\n[qs-parent:s]","x":1}})");
}

TEST(ParentTag, GoesByTheLastOfARepeatedKey) {
  EXPECT_EQ(answerTo(R"({"tool_name":"Task","session_id":"s1","session_id":"s2",
                         "tool_input":{"prompt":"a"},"tool_input":{"prompt":"b"}})"),
            R"({"updated_input":{"prompt":"b\n\n[qs-parent:s2]"}})");
  EXPECT_EQ(answerTo(R"({"tool_name":"Task","tool_name":"Other","session_id":"s",
                         "tool_input":{"prompt":"a"}})"),
            std::nullopt);
}

TEST(ParentTag, LeavesEverythingElseOfAnyInputAsItWas) {
  unit::ValueGenerator generator(51);
  for (int i = 0; i < 2000; ++i) {
    JSON::Object input = generator.object(4);
    const std::string prompt = generator.text();
    input.set("prompt", prompt);
    const auto document = answerTo(JSON::write(
        JSON::objectOf({{"tool_name", "Task"}, {"session_id", "s"}, {"tool_input", input}}),
        JSON::Slashes::plain));
    ASSERT_TRUE(document);
    const JSON::Object answered = parsedObject(*document);
    ASSERT_EQ(answered.size(), 1U);
    JSON::Object updated = *JSON::objectOf(answered.find("updated_input"));
    ASSERT_TRUE(JSON::isText(updated.find("prompt"), prompt + "\n\n[qs-parent:s]"));
    updated.set("prompt", prompt);
    ASSERT_TRUE(unit::areSame(updated, input)) << *document;
  }
}

}  // namespace
}  // namespace quillstead::hook::ParentTag
