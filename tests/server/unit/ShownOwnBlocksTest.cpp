#include "server/Shown.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

TEST(OwnBlocks, AreTakenOutOfAText) {
  struct Case {
    std::string_view text;
    std::string_view left;
  };
  for (const Case& one :
       {Case{"a <quillstead-memory>\nx\n</quillstead-memory> b", "a  b"},
        {"<user-rules>\nr\n</user-rules>do it", "do it"},
        {"<quillstead-shortcut>s</quillstead-shortcut><quillstead-now>n</quillstead-now>", ""},
        {"<user-rules>a</user-rules>x<user-rules>b</user-rules>", "x"},
        {"<user-rules> <quillstead-memory>x</quillstead-memory> </user-rules>y", "y"},
        {"how do I close <user-rules> here?", "how do I close <user-rules> here?"},
        {"</user-rules> <user-rules>", "</user-rules> <user-rules>"},
        {"a < b <c>", "a < b <c>"},
        {"", ""}}) {
    EXPECT_EQ(Shown::withoutOwnBlocks(one.text), one.left);
  }
}

}  // namespace

}  // namespace quillstead::server
