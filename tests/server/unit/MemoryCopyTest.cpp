#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

namespace {

/// Called where they are linked, and not made into other instructions.
void* (*volatile const copy)(void*, const void*, std::size_t) = std::memcpy;
void* (*volatile const move)(void*, const void*, std::size_t) = std::memmove;

constexpr std::size_t longest = 600;  // some in blocks, some longer
constexpr std::size_t begin = 700;    // of what is copied, at an even address

std::string numbered() {
  std::string bytes(2 * begin + longest, '\0');
  for (std::size_t at = 0; at < bytes.size(); ++at)
    bytes[at] = static_cast<char>(at * 131 + at / 256);
  return bytes;
}

/// What is right, made byte by byte.
std::string moved(const std::string& bytes, std::size_t from, std::size_t to, std::size_t count) {
  std::string expected = bytes;
  for (std::size_t at = 0; at < count; ++at) expected[to + at] = bytes[from + at];
  return expected;
}

}  // namespace

TEST(MemoryCopy, CopiesEveryLengthFromAndToEveryAddressAndNothingBeside) {
  const std::string bytes = numbered();
  for (std::size_t count = 0; count <= longest; ++count) {
    for (std::size_t offset = 0; offset < 17; ++offset) {
      std::string now = bytes;
      const std::size_t to = offset * 3 % 17;
      EXPECT_EQ(copy(now.data() + to, now.data() + begin + offset, count), now.data() + to);
      ASSERT_EQ(now, moved(bytes, begin + offset, to, count)) << count << " bytes, " << offset;
    }
  }
}

TEST(MemoryCopy, MovesEveryLengthOverItselfInBothDirections) {
  const std::string bytes = numbered();
  for (std::size_t count = 0; count <= longest; ++count) {
    for (std::size_t distance = 0; distance <= 300; distance += distance < 40 ? 1 : 13) {
      for (const std::size_t to : {begin - distance, begin + distance}) {
        std::string now = bytes;
        EXPECT_EQ(move(now.data() + to, now.data() + begin, count), now.data() + to);
        ASSERT_EQ(now, moved(bytes, begin, to, count))
            << count << " bytes from " << begin << " to " << to;
      }
    }
  }
}
