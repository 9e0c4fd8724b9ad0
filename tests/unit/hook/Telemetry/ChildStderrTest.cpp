#include "hook/Telemetry/ChildStderr.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace quillstead::hook::ChildStderr {
namespace {

using namespace std::string_view_literals;

std::string forwarded(const std::string& raw, std::optional<std::int32_t> status = std::nullopt,
                      std::string_view tool = "rules_get") {
  const unit::Captured captured(STDERR_FILENO);
  forward(tool, raw, status);
  return captured.text();
}

/// The forwarded text alone, without the words before it and the line end behind it.
std::string tailOf(const std::string& raw) {
  const std::string record = forwarded(raw);
  const std::string before = "quillstead-hook: the rules_get lane's MCP child said:\n";
  EXPECT_TRUE(record.starts_with(before) && record.ends_with("\n")) << record;
  if (record.size() <= before.size()) return "nothing";
  return record.substr(before.size(), record.size() - before.size() - 1);
}

std::string times(std::size_t count, const std::string& text) {
  std::string all;
  for (; count > 0; --count) all += text;
  return all;
}

TEST(ChildStderr, ForwardsTheTextUnderTheToolsName) {
  EXPECT_EQ(forwarded("one\ntwo\n", 1),
            "quillstead-hook: the rules_get lane's MCP child said (exit 1):\none\ntwo\n");
}

TEST(ChildStderr, HasNoStatusPartForATimedOutChild) {
  EXPECT_EQ(forwarded("the tail", std::nullopt, "memory_get_relevant"),
            "quillstead-hook: the memory_get_relevant lane's MCP child said:\nthe tail\n");
}

TEST(ChildStderr, ReportsASignalFromOutsideWithItsMinusSign) {
  EXPECT_EQ(forwarded("x", -9),
            "quillstead-hook: the rules_get lane's MCP child said (exit -9):\nx\n");
  EXPECT_EQ(forwarded("x", 0),
            "quillstead-hook: the rules_get lane's MCP child said (exit 0):\nx\n");
}

TEST(ChildStderr, WritesNothingForBlankText) {
  for (const char* blank :
       {"", " ", "\n\n  \n", "\t\r\n\v\f", "\xE2\x80\xA8\xC2\xA0\xE3\x80\x80\xC2\x85"}) {
    EXPECT_EQ(forwarded(blank, 1), "");
  }
}

TEST(ChildStderr, TrimsBothEnds) {
  EXPECT_EQ(tailOf(" \n\n a  b \r\n\n"), "a  b");
  EXPECT_EQ(tailOf("\xE3\x80\x80x\xC2\xA0"), "x");
}

TEST(ChildStderr, ForwardsTheLastFiveLines) {
  EXPECT_EQ(tailOf("1\n2\n3\n4\n5\n6\n7\n"), "3\n4\n5\n6\n7");
  EXPECT_EQ(tailOf("1\n2\n3\n4\n5"), "1\n2\n3\n4\n5");
  EXPECT_EQ(tailOf("1\n2\n3\n4\n5\n6"), "2\n3\n4\n5\n6");
  EXPECT_EQ(tailOf("1\n2"), "1\n2");
  EXPECT_EQ(tailOf("1"), "1");
}

TEST(ChildStderr, CountsEmptyLines) {
  EXPECT_EQ(tailOf("1\n2\n\n\n\n6"), "2\n\n\n\n6");
  EXPECT_EQ(tailOf("1\n2\n\n\n\n\n7"), "\n\n\n\n7");
}

TEST(ChildStderr, DoesNotSplitBetweenCarriageReturnAndLineFeed) {
  EXPECT_EQ(tailOf("1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n"), "1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7");
  EXPECT_EQ(tailOf("0\n1\r\n2\n3\r\n4\n5\n6\n7"), "1\r\n2\n3\r\n4\n5\n6\n7");
  EXPECT_EQ(tailOf("1\n\r2\n3\n4\n5\n6"), "\r2\n3\n4\n5\n6");
  EXPECT_EQ(tailOf("1\r2\r3\r4\r5\r6\r7"), "1\r2\r3\r4\r5\r6\r7");
}

TEST(ChildStderr, CutsTheTailToItsFirstThousandCharacters) {
  EXPECT_EQ(tailOf(times(3000, "x")), times(1000, "x"));
  EXPECT_EQ(tailOf(times(1000, "x")), times(1000, "x"));
  EXPECT_EQ(tailOf(times(1001, "x")), times(1000, "x"));
  EXPECT_EQ(tailOf("a\n" + times(2000, "x")), "a\n" + times(998, "x"));
}

TEST(ChildStderr, CountsCharactersAsAReaderSeesThem) {
  const std::string family =
      "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
  EXPECT_EQ(tailOf(times(1500, "e\xCC\x81")), times(1000, "e\xCC\x81"));
  EXPECT_EQ(tailOf(times(1500, family)), times(1000, family));
  EXPECT_EQ(tailOf(times(1500, "x\r\n") + "y"), times(500, "x\r\n"));
}

TEST(ChildStderr, ShowsInvalidBytesAsReplacementCharacters) {
  EXPECT_EQ(tailOf("a\xFF\xE2\x82z"), "a\xEF\xBF\xBD\xEF\xBF\xBDz");
  EXPECT_EQ(tailOf("\xFF"), "\xEF\xBF\xBD");
  EXPECT_EQ(tailOf(times(1500, "\xFF")), times(1000, "\xEF\xBF\xBD"));
}

TEST(ChildStderr, ComposesTheRecordThatItForwards) {
  EXPECT_EQ(record("rules_get", "a\nb\n", 7),
            "the rules_get lane's MCP child said (exit 7):\na\nb");
  EXPECT_EQ(record("rules_get", "x", std::nullopt), "the rules_get lane's MCP child said:\nx");
  EXPECT_EQ(record("rules_get", " \n", 7), std::nullopt);
}

TEST(ChildStderr, KeepsANulInTheText) { EXPECT_EQ(tailOf(std::string("a\0b"sv)), "a\0b"sv); }

}  // namespace
}  // namespace quillstead::hook::ChildStderr
