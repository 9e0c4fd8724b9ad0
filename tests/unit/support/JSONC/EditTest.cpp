#include "support/JSONC/Edit.h"

#include <gtest/gtest.h>

namespace quillstead::JSONC {
namespace {

Document document(const std::string& text) {
  auto read = Document::read(text);
  const auto* complaint = std::get_if<Complaint>(&read);
  EXPECT_EQ(complaint, nullptr) << (complaint != nullptr ? complaint->what : "") << "\n" << text;
  return std::get<Document>(std::move(read));
}

JSON::Value entry() {
  JSON::Object object;
  object.set("run", JSON::Value("x"));
  object.set("args", JSON::Value(JSON::Array{JSON::Value("y"), JSON::Value(1)}));
  return JSON::Value(std::move(object));
}

struct Case {
  const char* name;
  std::string before;
  Path container;
  std::string after;
};

/// What is added to each: the member "k" (or an element) with `entry`.
const std::vector<Case> cases{
    {"Empty", "{}", {}, "{\n  \"k\": {\n    \"run\": \"x\",\n    \"args\": [\"y\", 1]\n  }\n}"},
    {"Compact", "{\"a\":1}", {}, "{\"a\":1,\"k\":{\"run\":\"x\",\"args\":[\"y\",1]}}"},
    {"OnOneLine", "{\"a\": 1}", {}, "{\"a\": 1, \"k\": {\"run\": \"x\", \"args\": [\"y\", 1]}}"},
    {"Two",
     "{\n  \"a\": 1\n}\n",
     {},
     "{\n  \"a\": 1,\n  \"k\": {\n    \"run\": \"x\",\n    \"args\": [\"y\", 1]\n  }\n}\n"},
    {"FourAndReturns",
     "{\r\n    \"a\": 1\r\n}",
     {},
     "{\r\n    \"a\": 1,\r\n    \"k\": {\r\n        \"run\": \"x\",\r\n        \"args\": [\"y\", "
     "1]\r\n    }\r\n}"},
    {"Tab",
     "{\n\t\"a\": []\n}",
     {Step("a")},
     "{\n\t\"a\": [\n\n\t\t{\n\t\t\t\"run\": \"x\",\n\t\t\t\"args\": [\"y\", 1]\n\t\t}\n\t]\n}"},
    {"EmptyOnOneLine",
     "{\"a\": {}}",
     {Step("a")},
     "{\"a\": { \"k\": {\"run\": \"x\", \"args\": [\"y\", 1]}}}"},
    {"CommentBehindTheLast",
     "{\n  \"a\": 1 // why\n  // more\n}",
     {},
     "{\n  \"a\": 1, // why\n  // more\n  \"k\": {\n    \"run\": \"x\",\n    \"args\": [\"y\", "
     "1]\n  }\n}"},
    {"CommentBehindTheLastOnItsLine",
     "[1 // why\n]",
     {},
     "[1, // why\n  {\n    \"run\": \"x\",\n    \"args\": [\"y\", 1]\n  }\n]"},
    {"AllOfItIndented",
     "  {\"a\": {\n    \"b\": []\n  }}",
     {Step("a"), Step("b")},
     "  {\"a\": {\n    \"b\": [\n\n      {\n        \"run\": \"x\",\n        \"args\": [\"y\", "
     "1]\n      }\n    ]\n  }}"},
    {"CommaBehindTheLast", "[1, 2, ]", {}, "[1, 2, {\"run\": \"x\", \"args\": [\"y\", 1]}, ]"},
    {"OnlyAComment",
     "{ // nothing\n}",
     {},
     "{ // nothing\n  \"k\": {\n    \"run\": \"x\",\n    \"args\": [\"y\", 1]\n  }\n}"},
    {"BehindALongElement",
     "{\"h\": [{\n  \"a\": 1\n}]}",
     {Step("h")},
     "{\"h\": [{\n  \"a\": 1\n}, {\n  \"run\": \"x\",\n  \"args\": [\"y\", 1]\n}]}"},
    {"TheLastOfTheSameKeyCounts",
     "{\"a\":[1],\"a\":[2]}",
     {Step("a")},
     "{\"a\":[1],\"a\":[2,{\"run\":\"x\",\"args\":[\"y\",1]}]}"},
    {"ByteOrderMark",
     "\xEF\xBB\xBF[1]",
     {},
     "\xEF\xBB\xBF[1, {\"run\": \"x\", \"args\": [\"y\", 1]}]"},
};

Document add(const Document& to, const Path& container, const JSON::Value& value) {
  const bool isObject = to.at(container)->kind == Kind::object;
  return isObject ? Edit::addMember(to, container, "k", value)
                  : Edit::addElement(to, container, value);
}

Path lastOf(const Document& in, Path container) {
  const Node& node = *in.at(container);
  const Step last =
      node.kind == Kind::object ? Step(node.items.back().key) : Step(node.items.size() - 1);
  container.push_back(last);
  return container;
}

TEST(Edit, AddsAsAPersonWould) {
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(add(document(one.before), one.container, entry()).text(), one.after);
  }
}

TEST(Edit, TakesAwayExactlyWhatWasAdded) {
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    const Document added = document(one.after);
    const auto removed = Edit::remove(added, lastOf(added, one.container));
    EXPECT_EQ(removed.document.text(), one.before);
    EXPECT_NE(removed.left, Edit::Left::emptyMade);
  }
}

TEST(Edit, TellsAContainerThatWasMadeFromOneThatWasThere) {
  for (const std::string& text : {std::string("{\"a\":1}"), std::string("{\n  \"a\": 1\n}\n")}) {
    SCOPED_TRACE(text);
    JSON::Object outer;
    outer.set("k", entry());
    const Document made = Edit::addMember(document(text), {}, "o", JSON::Value(outer));
    const auto emptied = Edit::remove(made, Path{Step("o"), Step("k")});
    EXPECT_EQ(emptied.left, Edit::Left::emptyMade);
    EXPECT_EQ(Edit::remove(emptied.document, Path{Step("o")}).document.text(), text);

    const Document found = Edit::addMember(document(text), {}, "o", JSON::Value(JSON::Object()));
    const Document filled = Edit::addMember(found, Path{Step("o")}, "k", entry());
    const auto again = Edit::remove(filled, Path{Step("o"), Step("k")});
    EXPECT_EQ(again.left, Edit::Left::emptyFound);
    EXPECT_EQ(again.document.text(), found.text());
  }
}

TEST(Edit, TellsAFileThatWasMadeFromOneThatWasThere) {
  JSON::Object root;
  root.set("k", entry());
  for (const char* text : {"", "\n", "// nothing yet", "\xEF\xBB\xBF", "/* a */\r\n\r\n"}) {
    SCOPED_TRACE(text);
    const Document made = Edit::addRoot(document(text), JSON::Value(root));
    const auto emptied = Edit::remove(made, Path{Step("k")});
    ASSERT_EQ(emptied.left, Edit::Left::emptyMade);
    const auto left = Edit::removeRoot(emptied.document);
    EXPECT_EQ(left ? left->text() : "", text);
    EXPECT_EQ(left.has_value(), *text != '\0');
  }
  for (const char* text : {"{}", "{}\n", "{}\n\n", "\n{}\n\n", "// c\n{\n}\n\n", "{ }\r\n\r\n"}) {
    SCOPED_TRACE(text);
    const Document added = Edit::addMember(document(text), {}, "k", entry());
    const auto removed = Edit::remove(added, Path{Step("k")});
    EXPECT_EQ(removed.left, Edit::Left::emptyFound);
    EXPECT_EQ(removed.document.text(), text);
  }
}

struct RemovalCase {
  const char* name;
  std::string before;
  Path path;
  std::string after;
};

TEST(Edit, TakesAwayWhatAPersonWrote) {
  const std::vector<RemovalCase> removals{
      {"First", "{ \"k\": 1, \"b\": 2 }", {Step("k")}, "{ \"b\": 2 }"},
      {"Middle", "[1, 2, 3]", {Step(std::size_t{1})}, "[1, 3]"},
      {"Last", "[1, 2 /* two */]", {Step(std::size_t{1})}, "[1 /* two */]"},
      {"FirstOfLines", "{\n  \"k\": 1,\n  \"b\": 2\n}", {Step("k")}, "{\n  \"b\": 2\n}"},
      {"OnlyOne", "{ \"k\": 1 }", {Step("k")}, "{}"},
      {"OnlyOneWithAComma", "{\n  \"k\": 1,\n}", {Step("k")}, "{}"},
      {"CommentsStay", "[ /* a */ 1 /* b */ ]", {Step(std::size_t{0})}, "[ /* a */ /* b */ ]"},
      {"CommentBeforeItsComma", "[1 /* b */, 2]", {Step(std::size_t{0})}, "[ /* b */ 2]"},
      {"NothingIsPutIntoAComment",
       "[\n  1, // one\n  2, 3]",
       {Step(std::size_t{1})},
       "[\n  1, // one\n   3]"},
      {"AlsoWhenItIsAlone", "[ // a\n  1 ]", {Step(std::size_t{0})}, "[ // a\n   ]"},
  };
  for (const RemovalCase& one : removals) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(Edit::remove(document(one.before), one.path).document.text(), one.after);
  }
}

TEST(Edit, ReplacesAValueAndNothingElse) {
  const Document before = document("{ \"a\" : [1,2] , // c\n \"b\":12345678901234567890.12e5 }");
  EXPECT_EQ(Edit::replace(before, Path{Step("a"), Step(std::size_t{1})}, JSON::Value("é\n")).text(),
            "{ \"a\" : [1,\"é\\n\"] , // c\n \"b\":12345678901234567890.12e5 }");
}

}  // namespace
}  // namespace quillstead::JSONC
