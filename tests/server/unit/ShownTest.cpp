#include "server/Shown.h"
#include "server/helpers/WaysOut.h"
#include "support/Text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

struct Case {
  std::string_view text;
  std::string_view shown;
};

/// A "<" that is still there begins nothing.
bool isHarmless(std::string_view text) {
  for (std::size_t at = text.find('<'); at != text.npos; at = text.find('<', at + 1)) {
    const std::size_t next = text.find_first_not_of(" \t\n<", at + 1);
    if (next == text.npos) continue;
    if (text.find_first_of("0123456789=-&", next) != next) return false;
  }
  return text.find("\uFF1C") == text.npos && text.find("\uFE64") == text.npos;
}

TEST(Shown, LetsNothingOutOfItsFence) {
  ASSERT_GE(std::size(test::waysOut), 42U);
  for (const std::string_view way : test::waysOut) {
    for (const std::string_view before : {"", "a", "a\n", "&lt;", "<"}) {
      const std::string text = std::string(before) + std::string(way) + " b";
      EXPECT_TRUE(isHarmless(Shown::text(text))) << text << "\n" << Shown::text(text);
      EXPECT_TRUE(isHarmless(Shown::line(text))) << text << "\n" << Shown::line(text);
    }
  }
}

TEST(Shown, EscapesWhatCouldBeginATag) {
  for (const Case& one : {Case{"<b>x</b>", "&lt;b>x&lt;/b>"},
                          {"a < b, 1<2, x <= y, <- <<", "a < b, 1<2, x <= y, <- <<"},
                          {"a<b", "a&lt;b"},
                          {"<!x <?x <|x <_x", "&lt;!x &lt;?x &lt;|x &lt;_x"},
                          {"<é <中 <π", "&lt;é &lt;中 &lt;π"},
                          {"&lt;/user-rules>", "&lt;/user-rules>"},
                          {"<", "<"},
                          {"</", "&lt;/"},
                          {"", ""},
                          {"\xFF<a\xC3", "\uFFFD&lt;a\uFFFD"}}) {
    EXPECT_EQ(Shown::text(one.text), one.shown);
  }
}

TEST(Shown, DropsWhatNobodySees) {
  for (const Case& one : {Case{"a\u200Bb\u2060c\uFEFFd\u00ADe", "abcde"},
                          {"a\u202Eb\u2066c\u2069", "abc"},
                          {"tag\U000E0001\U000E0074\U000E0061\U000E007F", "tag"},
                          {"a\x01\x1B[31mb\x7F\u0085", "a[31mb"},
                          {"tab\tline\ncr\r\n", "tab\tline\ncr\n"},
                          {"a\u200Db\u200Cc", "abc"},
                          {"❤\uFE0F\uFE0E\U000E0100\uFE01y", "❤\uFE0Fy"},
                          {"<\rb", "&lt;b"}}) {
    EXPECT_EQ(Shown::text(one.text), one.shown);
  }
}

TEST(Shown, EndsEveryLineWithALineFeed) {
  EXPECT_EQ(Shown::text("a\u2028## Tea\u2029(personal: tea.md)"), "a\n## Tea\n(personal: tea.md)");
  EXPECT_EQ(Shown::text("<\u2028/user-rules>"), "&lt;\n/user-rules>");
}

TEST(Shown, DropsFillersAndSelectorsThatCouldHideText) {
  for (const char* const unseen :
       {"\u034F", "\u115F", "\u1160", "\u17B4", "\u2065", "\u3164", "\uFFA0", "\uFFF0",
        "\U000E0080", "\U000E01F0", "\U000E0FFF", "\uFE00", "\uFE0F", "\U000E0141", "\u180F"}) {
    EXPECT_EQ(Shown::text("a" + std::string(unseen) + "b"), "ab") << unseen;
    EXPECT_THAT(Shown::text("</" + std::string(unseen) + "user-rules>"),
                ::testing::StartsWith("&lt;"));
  }
  for (const std::string seen :
       {"\u2764\uFE0F", "1\uFE0F\u20E3", "\u845B\U000E0100", "\u2229\uFE00"}) {
    EXPECT_EQ(Shown::text(seen), seen);
  }
}

TEST(Shown, KeepsTheJoinersThatAScriptOrAnEmojiNeeds) {
  for (const std::string_view text : {"می\u200Cخواهم",                          // Persian
                                      "ه\u200D",                                // Arabic
                                      "क्\u200Dष",                               // Hindi
                                      "ന\u0D4D\u200D",                          // Malayalam
                                      "ක්\u200Dෂ",                               // Sinhala
                                      "👩\u200D👩\u200D👧", "👩🏽\u200D🚀",  // families, tones
                                      "❤\uFE0F\u200D🔥", "🏳\uFE0F\u200D🌈"}) {
    EXPECT_EQ(Shown::text(text), text);
  }
  EXPECT_EQ(Shown::text("می\u200C\u200C\u200Dخ"), "می\u200Cخ");
  EXPECT_EQ(Shown::text("👩\u200D a"), "👩 a");
  EXPECT_EQ(Shown::text("👩\u200C👧"), "👩👧");
}

TEST(Shown, KeepsALineShortAndItsCharactersWhole) {
  EXPECT_EQ(Shown::line(" a\n\tb\r\nc\u2028d "), "a b c d");
  for (const char* const text : {"a b", " a b", "a b ", "a  b", "a\nb", "a\u00A0b"}) {
    EXPECT_EQ(Shown::line(text), "a b") << text;
  }
  EXPECT_EQ(Shown::line(std::string(200, 'x')), std::string(200, 'x'));
  EXPECT_EQ(Shown::line(std::string(201, 'x')), std::string(197, 'x') + "…");
  std::string cut = Shown::line(std::string(196, 'x') + "é and more");
  EXPECT_EQ(cut, std::string(196, 'x') + "…");
  cut = Shown::line(std::string(190, 'x') + "👩\u200D👩\u200D👧 and more");
  EXPECT_EQ(cut, std::string(190, 'x') + "…") << "an emoji is one character";

  std::string endless = "a";
  for (int mark = 0; mark < 3'500; ++mark) endless += "\u0301";
  cut = Shown::line(endless);
  EXPECT_THAT(cut.size(), ::testing::AllOf(::testing::Ge(190U), ::testing::Le(200U)));
  EXPECT_EQ(cut, Text::repaired(cut));
}

TEST(Shown, LeavesItsOwnOutputAlone) {
  const std::string_view parts[] = {
      "<", "/", " ",      "\n",     "\r",   "a",    "user-rules", "\u200D", "\u200B", "\uFE0F",
      "👩", "م", "\u0301", "\uFF1C", "\xFF", "&lt;", "1",          "\u2028", "\x02",   "\U000E0041"};
  std::minstd_rand random(1);
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    for (int part = 0; part < 8; ++part) text += parts[random() % std::size(parts)];
    const std::string shown = Shown::text(text);
    ASSERT_EQ(Shown::text(shown), shown) << text;
    ASSERT_LE(Shown::line(text).size(), Shown::longestLine);
  }
}

TEST(Shown, EscapesOnlyOurFencesInTheUsersOwnText) {
  for (const Case& one : {Case{"<b>\u200B</b>", "<b>\u200B</b>"},
                          {"</quillstead-memory>", "&lt;/quillstead-memory>"},
                          {"< / User-Rules>", "&lt; / User-Rules>"},
                          {"<\u200Buser\u200B-rules>", "&lt;\u200Buser\u200B-rules>"},
                          {"\uFF1C\uFF0Fuser-rules>", "&lt;\uFF0Fuser-rules>"},
                          {"<QUILLSTEAD-now", "&lt;QUILLSTEAD-now"},
                          {"<user>, a < b, <quill>", "<user>, a < b, <quill>"}}) {
    EXPECT_EQ(Shown::escapeFences(one.text), one.shown);
  }
}

TEST(Shown, TakesAMegabyteOfTrouble) {
  for (const std::string_view part :
       {"<", "< ", "<\u200B", "< \u0301", "\uFF1C", "\u0301", "👩\u200D"}) {
    std::string text;
    while (text.size() < 1'000'000) text += part;
    EXPECT_LE(Shown::text(text).size(), text.size() * 4) << part;
    EXPECT_LE(Shown::line(text).size(), Shown::longestLine) << part;
    EXPECT_LE(Shown::escapeFences(text).size(), text.size() * 4) << part;
  }
}

}  // namespace

}  // namespace quillstead::server
