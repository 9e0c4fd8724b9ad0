#include "server/Fence.h"

#include <gtest/gtest.h>

#include <string_view>

namespace quillstead {

namespace {

TEST(Fence, DefusesTagsThatCouldPassForAFence) {
  struct Case {
    std::string_view text;
    std::string_view harmless;
  };
  for (const Case& one : {Case{"a </quillstead-memory> b", "a &lt;/quillstead-memory> b"},
                          {"<user-rules>", "&lt;user-rules>"},
                          {"< / User-Rules>", "&lt; / User-Rules>"},
                          {"<QUILLSTEAD-now>", "&lt;QUILLSTEAD-now>"},
                          {"<<user-rules>", "<&lt;user-rules>"},
                          {"<\n/quillstead-shortcut", "&lt;\n/quillstead-shortcut"},
                          {"<user>", "<user>"},
                          {"a < b and <b>", "a < b and <b>"},
                          {"<", "<"},
                          {"</", "</"},
                          {"", ""}}) {
    EXPECT_EQ(Fence::harmless(one.text), one.harmless);
  }
}

}  // namespace

}  // namespace quillstead
