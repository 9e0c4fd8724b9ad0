#include "cli/Places.h"
#include "unit/helpers/Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillstead::cli {

namespace {

#if defined(__APPLE__)
constexpr const char* log = "/h/Library/Logs/quillstead-hook.log";
constexpr const char* cache = "/h/Library/Caches/quillstead";
#else
constexpr const char* log = "/h/.local/state/quillstead/hook.log";
constexpr const char* cache = "/h/.cache/quillstead";
#endif

/// All that the environment decides.
std::vector<std::string> placesIn(const OS::Environment& environment) {
  const Places places = Places::find(environment);
  return {places.home,           places.claudeDirectory, places.claudeServers,
          places.codexDirectory, places.cursorDirectory, places.openCodeDirectory,
          places.stateDirectory, places.cacheDirectory,  places.personalStore};
}

TEST(Places, AreInTheHomeWhenNothingElseIsSaid) {
  for (const std::string& nothing : {std::string("HOME=/h"), std::string("CODEX_HOME=")}) {
    const unit::EnvironmentOf environment{
        "HOME=/h",         nothing,           "CLAUDE_CONFIG_DIR=", "XDG_CONFIG_HOME=",
        "XDG_STATE_HOME=", "XDG_CACHE_HOME=", "QUILLSTEAD_HOME="};
    EXPECT_THAT(placesIn(environment),
                ::testing::ElementsAre("/h", "/h/.claude", "/h/.claude.json", "/h/.codex",
                                       "/h/.cursor", "/h/.config/opencode",
                                       "/h/.local/state/quillstead", cache, "/h/.quillstead"));
    EXPECT_EQ(Places::find(environment).log, log);
  }
}

TEST(Places, AreWhereTheEnvironmentSays) {
  for (const std::string& end : {std::string(), std::string("/")}) {
    const unit::EnvironmentOf environment{"HOME=/h" + end,
                                          "CLAUDE_CONFIG_DIR=/c" + end,
                                          "CODEX_HOME=/x" + end,
                                          "XDG_CONFIG_HOME=/config" + end,
                                          "XDG_STATE_HOME=/state" + end,
                                          "XDG_CACHE_HOME=/cache" + end,
                                          "QUILLSTEAD_HOME=/store" + end};
    EXPECT_THAT(placesIn(environment),
                ::testing::ElementsAre("/h", "/c", "/c/.claude.json", "/x", "/h/.cursor",
                                       "/config/opencode", "/state/quillstead", "/cache/quillstead",
                                       "/store"));
  }
}

TEST(Places, HaveNoSlashTwice) {
  const auto plain = placesIn(unit::EnvironmentOf{"HOME=/h"});
  for (const char* const home : {"HOME=/h/", "HOME=/h///"}) {
    EXPECT_EQ(placesIn(unit::EnvironmentOf{home}), plain);
    EXPECT_EQ(Places::find(unit::EnvironmentOf{home}).log, log);
  }
  for (const std::string& place : placesIn(unit::EnvironmentOf{"HOME=/"})) {
    EXPECT_EQ(place.find("//"), std::string::npos) << place;
  }
  const Places packaged =
      Places::find(unit::EnvironmentOf{"HOME=/h", "QUILLSTEAD_PROGRAMS=/opt/quillstead/bin/"});
  EXPECT_EQ(packaged.hook, "/opt/quillstead/bin/quillstead-hook");
}

TEST(Places, TakeARelativeBaseDirectoryForNone) {
  const Places places = Places::find(unit::EnvironmentOf{
      "HOME=/h", "XDG_CONFIG_HOME=config", "XDG_STATE_HOME=./state", "XDG_CACHE_HOME=cache"});
  EXPECT_EQ(places.openCodeDirectory, "/h/.config/opencode");
  EXPECT_EQ(places.stateDirectory, "/h/.local/state/quillstead");
  EXPECT_EQ(places.cacheDirectory, cache);
}

TEST(Places, PutTheOtherProgramsBesideTheRunningOne) {
  const Places places = Places::find(unit::EnvironmentOf{"HOME=/h"});
  ASSERT_TRUE(places.programs.starts_with('/') && places.programs.ends_with('/'));
  EXPECT_EQ(places.hook, places.programs + "quillstead-hook");
  EXPECT_EQ(places.server, places.programs + "quillstead-mcp");
}

TEST(Places, HaveTheProgramsWhereAPackageSays) {
  const Places places =
      Places::find(unit::EnvironmentOf{"HOME=/h", "QUILLSTEAD_PROGRAMS=/opt/quillstead/bin"});
  EXPECT_EQ(places.hook, "/opt/quillstead/bin/quillstead-hook");
  EXPECT_EQ(places.server, "/opt/quillstead/bin/quillstead-mcp");
}

TEST(Places, TakeARelativePlaceOfProgramsForNone) {
  const std::string beside = Places::find(unit::EnvironmentOf{"HOME=/h"}).programs;
  for (const char* const named : {"QUILLSTEAD_PROGRAMS=", "QUILLSTEAD_PROGRAMS=bin"}) {
    EXPECT_EQ(Places::find(unit::EnvironmentOf{"HOME=/h", named}).programs, beside);
  }
}

}  // namespace

}  // namespace quillstead::cli
