#include "support/JSONC/Document.h"

#include <gtest/gtest.h>

namespace quillstead::JSONC {
namespace {

TEST(Document, TakesWhatPeopleWrite) {
  for (const std::string& text : {
           std::string(),
           std::string("// nothing\n/* at all */"),
           std::string("\xEF\xBB\xBF{}"),
           std::string("[1, 2,]"),
           std::string("[1, // one\r2]"),
           std::string("{\"a\": 1, // one\r\"b\": /* two */ 2,\r\n}"),
           std::string("[123456789012345678901234567890, -0.5e-10, true, false, null]"),
           std::string("[\"\\ud834\\udd1e // \\\" no comment\"]"),
           std::string(maximumDepth, '[') + std::string(maximumDepth, ']'),
       }) {
    auto read = Document::read(text);
    ASSERT_TRUE(std::holds_alternative<Document>(read)) << text;
    EXPECT_EQ(std::get<Document>(read).text(), text);
  }
}

struct Refusal {
  std::string text;
  std::size_t line;
  std::size_t column;
  std::string_view what;
};

TEST(Document, SaysWhereItIsWrongAndWhat) {
  const std::vector<Refusal> refusals{
      {"{\"a\": 1\n \"b\": 2}", 2, 2, "a comma or \"}\" is missing"},
      {"[1 2]", 1, 4, "a comma or \"]\" is missing"},
      {"{\"a\"; 1}", 1, 5, "a colon is missing"},
      {"{a: 1}", 1, 2, "a key in quotes is missing"},
      {"{", 1, 2, "\"}\" is missing"},
      {"[", 1, 2, "a value is missing"},
      {"{\"a\":}", 1, 6, "a value is missing"},
      {"{,}", 1, 2, "a key in quotes is missing"},
      {"[1,,]", 1, 4, "a value is missing"},
      {"[01]", 1, 2, "a value is missing"},
      {"[1.]", 1, 2, "a value is missing"},
      {"[nul]", 1, 2, "a value is missing"},
      {"{} []", 1, 4, "nothing may follow the value"},
      {"{}}", 1, 3, "nothing may follow the value"},
      {"[\"a]", 1, 2, "this string does not end"},
      {"[\"\\x\"]", 1, 3, "there is no such escape"},
      {"[\"\\u12g4\"]", 1, 3, "there is no such escape"},
      {"[\"a\tb\"]", 1, 4, "a control character must be escaped"},
      {"\r\n\r[ /* /* ", 3, 3, "this comment does not end"},
      {"[ / ]", 1, 3, "a value is missing"},
      {"\xEF\xBB\xBF[\"\xC3\xA4\xC3\xB6\", x]", 1, 8, "a value is missing"},
      {"[\"\xC3\xA4\xFF\"]", 1, 4, "this is not UTF-8"},
      {std::string("\xFF\xFE{\0}\0", 6), 1, 1, "this is not UTF-8"},
      {std::string(maximumDepth + 1, '['), 1, maximumDepth + 1,
       "too many containers within containers"},
  };
  for (const Refusal& refusal : refusals) {
    SCOPED_TRACE(refusal.text);
    const auto read = Document::read(refusal.text);
    const auto* complaint = std::get_if<Complaint>(&read);
    ASSERT_NE(complaint, nullptr);
    EXPECT_EQ(complaint->what, refusal.what);
    EXPECT_EQ(complaint->line, refusal.line);
    EXPECT_EQ(complaint->column, refusal.column);
  }
}

TEST(Document, FindsByPathTheLastOfTheSameKey) {
  const auto read = Document::read(R"({"a": 1, "\u0061": [true, {"b": "c\n"}]})");
  const auto& document = std::get<Document>(read);
  const Node* node = document.at(Path{Step("a"), Step(std::size_t{1}), Step("b")});
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(document.string(*node), "c\n");
  EXPECT_EQ(document.textOf(*node), "\"c\\n\"");
  EXPECT_EQ(document.at(Path{Step("a"), Step(std::size_t{2})}), nullptr);
  EXPECT_EQ(document.at(Path{Step("a"), Step("b")}), nullptr);
  EXPECT_EQ(document.at(Path{Step(std::size_t{0})}), nullptr);
  EXPECT_EQ(document.string(*document.at(Path{Step("a"), Step(std::size_t{0})})), std::nullopt);
}

}  // namespace
}  // namespace quillstead::JSONC
