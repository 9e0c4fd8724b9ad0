#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillstead::JSON {
namespace {

TEST(Document, DoesNotNeedTheBytesItWasReadFrom) {
  const std::string expected = R"({"key":["a text","one\n",12.50,true,null,{"inner":{}}]})";
  std::string bytes = expected;
  const std::optional<Document> document = read(bytes);
  ASSERT_TRUE(document);
  bytes.assign(bytes.size(), '#');
  EXPECT_EQ(write(document->root(), Slashes::plain), expected);
}

TEST(Document, KeepsItsViewsValidWhenItIsMoved) {
  const std::string text = R"(["x",{"k":1}])";
  std::vector<Document> moved;
  View root;
  {
    std::optional<Document> document = read(text);
    ASSERT_TRUE(document);
    root = document->root();
    moved.push_back(*std::move(document));
  }
  std::vector<Document> several;
  several.push_back(*read("[1]"));
  several.push_back(*read("[2]"));
  EXPECT_EQ(write(root, Slashes::plain), text);
  EXPECT_EQ(write(moved.front().root(), Slashes::plain), text);
  EXPECT_EQ(write(several.front().root(), Slashes::plain), "[1]");
}

TEST(Document, HasMembersAtTheTopOnlyWhenThereIsAnObject) {
  EXPECT_EQ(read(R"({"a":1,"b":2})")->object().size(), 2U);
  EXPECT_TRUE(read("{}")->object().empty());
  EXPECT_TRUE(read(R"([{"a":1}])")->object().empty());
}

}  // namespace
}  // namespace quillstead::JSON
