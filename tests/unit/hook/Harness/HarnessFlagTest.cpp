#include "hook/Harness/HarnessFlag.h"
#include "unit/helpers/CommandLine.h"

#include <gtest/gtest.h>

namespace quillstead::hook::HarnessFlag {
namespace {

/// The outcome in a word: the adapter's name, "unknown:" and the name, or "missing".
std::string outcomeOf(std::vector<std::string> arguments) {
  const unit::CommandLine line(std::move(arguments));
  const Outcome outcome = parse(line.arguments());
  if (const auto* found = std::get_if<Found>(&outcome)) return std::string(found->adapter.name());
  if (const auto* unknown = std::get_if<Unknown>(&outcome)) {
    return "unknown:" + std::string(unknown->name);
  }
  return "missing";
}

TEST(HarnessFlag, FindsEveryHarnessInBothForms) {
  for (const char* name : {"claude-code", "codex", "cursor", "opencode"}) {
    EXPECT_EQ(outcomeOf({"--harness", name}), name);
    EXPECT_EQ(outcomeOf({std::string("--harness=") + name}), name);
  }
}

TEST(HarnessFlag, IsMissingWithoutAValueOfUse) {
  EXPECT_EQ(outcomeOf({}), "missing");
  EXPECT_EQ(outcomeOf({"--slot", "rules"}), "missing");
  EXPECT_EQ(outcomeOf({"--harness"}), "missing");
  EXPECT_EQ(outcomeOf({"--harness="}), "missing");
  EXPECT_EQ(outcomeOf({"--harness", ""}), "missing");
  EXPECT_EQ(outcomeOf({"--harness=", "--harness", "codex"}), "missing");
}

TEST(HarnessFlag, IsUnknownForAnyOtherName) {
  EXPECT_EQ(outcomeOf({"--harness", "Codex"}), "unknown:Codex");
  EXPECT_EQ(outcomeOf({"--harness", " codex"}), "unknown: codex");
  EXPECT_EQ(outcomeOf({"--harness=cod"}), "unknown:cod");
  EXPECT_EQ(outcomeOf({"--harness", "--slot"}), "unknown:--slot");
}

TEST(HarnessFlag, LetsTheFirstOfTwoWin) {
  EXPECT_EQ(outcomeOf({"--harness", "claude-code", "--harness", "codex"}), "claude-code");
  EXPECT_EQ(outcomeOf({"--harness", "nothing", "--harness", "codex"}), "unknown:nothing");
}

}  // namespace
}  // namespace quillstead::hook::HarnessFlag
