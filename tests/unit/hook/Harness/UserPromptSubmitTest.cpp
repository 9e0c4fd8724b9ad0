#include "hook/Harness/UserPromptSubmit.h"
#include "unit/helpers/Inputs.h"

#include <gtest/gtest.h>

namespace quillstead::UserPromptSubmit {
namespace {

TEST(UserPromptSubmit, ReadsItsFourKeys) {
  EXPECT_EQ(unit::described(
                input(unit::documentIn(
                          R"({"transcript_path":"/t","session_id":"s","cwd":"/p","prompt":" hi "})")
                          .object())),
            "[ hi ][/p][s][/t]");
}

TEST(UserPromptSubmit, PutsTheTextIntoTheAdditionalContext) {
  const JSON::Object document = unit::parsedObject(envelope("text"));
  const JSON::Object* const output = JSON::objectOf(document.find("hookSpecificOutput"));
  ASSERT_TRUE(output);
  EXPECT_EQ(document.size(), 1U);
  EXPECT_EQ(output->size(), 2U);
  EXPECT_TRUE(JSON::isText(output->find("hookEventName"), "UserPromptSubmit"));
  EXPECT_TRUE(JSON::isText(output->find("additionalContext"), "text"));
}

TEST(UserPromptSubmit, WritesAnyTextSoThatItReadsBack) {
  unit::ValueGenerator generator(22);
  for (int i = 0; i < 500; ++i) {
    const std::string text = generator.text();
    const JSON::Object document = unit::parsedObject(envelope(text));
    const JSON::Object* const output = JSON::objectOf(document.find("hookSpecificOutput"));
    ASSERT_TRUE(output && JSON::isText(output->find("additionalContext"), text));
  }
}

}  // namespace
}  // namespace quillstead::UserPromptSubmit
