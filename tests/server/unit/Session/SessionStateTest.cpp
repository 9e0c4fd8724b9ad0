#include "server/Session/SessionState.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace quillstead::server {

namespace {

SessionState example() {
  SessionState state{.prompt = 7,
                     .promptBegan = 1'763'770'000'123,
                     .rules = std::numeric_limits<std::uint64_t>::max(),
                     .rulesPrompt = 3,
                     .rulesTime = -5,
                     .pointerPrompt = 6,
                     .room = 4'900,
                     .transcriptRead = 12'345,
                     .cards = {}};
  state.cards.push_back({.place = 1, .fingerprint = 2, .prompt = 3});
  state.cards.push_back({.place = 4, .fingerprint = 5, .prompt = 6});
  return state;
}

TEST(SessionState, ReadsBackWhatItWrote) {
  const std::string text = example().written();
  const auto read = SessionState::parse(text);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->written(), text);
  EXPECT_EQ(read->rulesTime, -5);
  EXPECT_EQ(read->room, 4'900U);
  ASSERT_EQ(read->cards.size(), 2U);
  EXPECT_EQ(read->cards[1].fingerprint, 5U);
  EXPECT_TRUE(SessionState::parse(SessionState().written()));
}

TEST(SessionState, RefusesWhateverIsNotWhole) {
  const std::string text = example().written();
  for (std::size_t length = 0; length + 1 < text.size(); ++length) {
    EXPECT_FALSE(SessionState::parse(text.substr(0, length))) << length;
  }
  EXPECT_FALSE(SessionState::parse(text + "x"));
  EXPECT_FALSE(SessionState::parse("x" + text));
  EXPECT_FALSE(SessionState::parse(text + text));
  std::string other = text;
  other.replace(other.find("prompt 7"), 8, "prompt x");
  EXPECT_FALSE(SessionState::parse(other));
  other = text;
  other.replace(other.find("card 1 2 3"), 10, "card 1 2 3 4");
  EXPECT_FALSE(SessionState::parse(other));
  other = text;
  other.replace(other.find("card 1 2 3"), 10, "card 1 2");
  EXPECT_FALSE(SessionState::parse(other));
  EXPECT_FALSE(SessionState::parse(std::string(10'000, '\0')));
}

}  // namespace

}  // namespace quillstead::server
