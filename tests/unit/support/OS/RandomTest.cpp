#include "support/OS/Random.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

namespace quillstead::OS {
namespace {

TEST(Random, GivesNoNumberTwice) {
  constexpr std::size_t count = 1'000;
  std::set<std::uint64_t> numbers;
  for (std::size_t at = 0; at < count; ++at) numbers.insert(randomNumber());
  EXPECT_EQ(numbers.size(), count);
}

TEST(Random, UsesEveryBit) {
  std::uint64_t set = 0;
  std::uint64_t clear = 0;
  for (int at = 0; at < 1'000; ++at) {
    const std::uint64_t number = randomNumber();
    set |= number;
    clear |= ~number;
  }
  EXPECT_EQ(set, ~std::uint64_t{0});
  EXPECT_EQ(clear, ~std::uint64_t{0});
}

}  // namespace
}  // namespace quillstead::OS
