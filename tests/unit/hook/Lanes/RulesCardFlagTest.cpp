#include "hook/Lanes/RulesCardFlag.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>

namespace quillstead::hook::RulesCardFlag {
namespace {

bool isOnFor(const std::string& value) {
  return isOn(unit::EnvironmentOf{"QUILLSTEAD_RULES_CARD=" + value});
}

TEST(RulesCardFlag, IsOnWhenTheVariableIsAbsent) {
  EXPECT_TRUE(isOn(unit::EnvironmentOf{}));
  EXPECT_TRUE(isOn(unit::EnvironmentOf{"OTHER=0"}));
}

TEST(RulesCardFlag, IsOnForFourWordsInAnyCaseAndWithWhiteSpaceAround) {
  for (const char* value : {"1", "true", "yes", "on", "TRUE", "Yes", "oN", " Yes ", "\t1\n",
                            "\xC2\xA0on\xE3\x80\x80"}) {
    EXPECT_TRUE(isOnFor(value)) << value;
  }
}

TEST(RulesCardFlag, IsOffForAnythingElse) {
  for (const char* value : {"0", "off", "no", "false", "", " ", "2", "11", "y", "t", "enabled",
                            "y es", "1.0", "\u200B1", "\xC3\x93N"}) {
    EXPECT_FALSE(isOnFor(value)) << value;
  }
}

}  // namespace
}  // namespace quillstead::hook::RulesCardFlag
