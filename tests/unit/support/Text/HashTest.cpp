#include "support/Text/Hash.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace quillstead {

namespace {

TEST(Hash, TellsBytesApart) {
  std::set<std::uint64_t> hashes;
  std::string text;
  for (int length = 0; length < 64; ++length) {
    hashes.insert(Text::hashOf(text));
    hashes.insert(Text::hashOf(text + '\0'));
    hashes.insert(Text::hashOf(text + 'b'));
    text += 'a';
  }
  EXPECT_EQ(hashes.size(), 3U * 64U);
}

// Files hold such numbers.
TEST(Hash, StaysTheSame) {
  EXPECT_EQ(Text::hashOf(""), 6238072747940578789U);
  EXPECT_EQ(Text::hashOf("memory"), 10374652493355664322U);
  EXPECT_EQ(Text::hashOf("more than eight bytes"), 14436940847731256096U);
}

}  // namespace

}  // namespace quillstead
