#include "cli/Places.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>

namespace quillstead::cli {

namespace {

#if defined(__APPLE__)
constexpr const char* log = "/h/Library/Logs/quillstead-hook.log";
constexpr const char* cache = "/h/Library/Caches/quillstead";
#else
constexpr const char* log = "/h/.local/state/quillstead/hook.log";
constexpr const char* cache = "/h/.cache/quillstead";
#endif

TEST(Places, AreInTheHomeWhenNothingElseIsSaid) {
  for (const std::string& nothing : {std::string("HOME=/h"), std::string("CODEX_HOME=")}) {
    const Places places = Places::find(
        unit::EnvironmentOf{"HOME=/h", nothing, "CLAUDE_CONFIG_DIR=", "XDG_CONFIG_HOME=",
                            "XDG_STATE_HOME=", "XDG_CACHE_HOME=", "QUILLSTEAD_HOME="});
    EXPECT_EQ(places.home, "/h");
    EXPECT_EQ(places.claudeDirectory, "/h/.claude");
    EXPECT_EQ(places.claudeServers, "/h/.claude.json");
    EXPECT_EQ(places.codexDirectory, "/h/.codex");
    EXPECT_EQ(places.cursorDirectory, "/h/.cursor");
    EXPECT_EQ(places.openCodeDirectory, "/h/.config/opencode");
    EXPECT_EQ(places.stateDirectory, "/h/.local/state/quillstead");
    EXPECT_EQ(places.cacheDirectory, cache);
    EXPECT_EQ(places.personalStore, "/h/.quillstead");
    EXPECT_EQ(places.log, log);
  }
}

TEST(Places, AreWhereTheEnvironmentSays) {
  const Places places = Places::find(unit::EnvironmentOf{
      "HOME=/h", "CLAUDE_CONFIG_DIR=/c", "CODEX_HOME=/x", "XDG_CONFIG_HOME=/config",
      "XDG_STATE_HOME=/state", "XDG_CACHE_HOME=/cache", "QUILLSTEAD_HOME=/store"});
  EXPECT_EQ(places.claudeDirectory, "/c");
  EXPECT_EQ(places.claudeServers, "/c/.claude.json");
  EXPECT_EQ(places.codexDirectory, "/x");
  EXPECT_EQ(places.cursorDirectory, "/h/.cursor");
  EXPECT_EQ(places.openCodeDirectory, "/config/opencode");
  EXPECT_EQ(places.stateDirectory, "/state/quillstead");
  EXPECT_EQ(places.cacheDirectory, "/cache/quillstead");
  EXPECT_EQ(places.personalStore, "/store");
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

}  // namespace

}  // namespace quillstead::cli
