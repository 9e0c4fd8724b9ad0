#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace quillstead::server::test {

namespace {

using ::testing::HasSubstr;

/// What is in the file of a card that was added.
std::string textOf(const MemoryStage& stage, const Answer& added) {
  const bool isPersonal = added.metaText("quillstead/store") == "personal";
  return unit::contentsOf(stage.path(std::string(isPersonal ? "home" : "project") +
                                     "/.quillstead/memory/" + added.metaText("quillstead/file")));
}

TEST(MemoryAdd, WritesACardThatTheNextPromptRecalls) {
  const MemoryStage stage;
  const Answer added = stage.call(
      "memory_add",
      R"({"text":"Ducks – naïve ones","title":"Ente","tags":["a","b"],"_quillstead_session":"s 1"})");
  EXPECT_FALSE(added.isError);
  EXPECT_EQ(added.metaText("quillstead/store"), "project");
  EXPECT_THAT(
      textOf(stage, added),
      ::testing::MatchesRegex("---\ntags: \\[a, b\\]\ncreated: [0-9TZ:-]+\nsession: s 1\n---\n\n"
                              "# Ente\n\nDucks – naïve ones\n"));
  EXPECT_THAT(stage.recalled("ducks"), ::testing::ElementsAre("Ente"));
}

TEST(MemoryAdd, RecordsWhoAdds) {
  const MemoryStage stage;
  const Answer added =
      stage.call("memory_add", R"({"text":"x","title":"T","_quillstead_subagent":"a7"})");
  EXPECT_THAT(textOf(stage, added), HasSubstr("\nsubagent: a7\n"));
}

TEST(MemoryAdd, GoesWhereItIsTold) {
  MemoryStage stage;
  const Answer added = stage.call("memory_add", R"({"text":"a","store":"personal"})");
  EXPECT_EQ(added.metaText("quillstead/store"), "personal");
  EXPECT_THAT(textOf(stage, added), ::testing::StartsWith("---\n"));

  const std::string outside = R"("cwd":)" + jsonText(stage.path("home"));
  EXPECT_EQ(
      stage.call("memory_add", R"({"text":"b",)" + outside + "}").metaText("quillstead/store"),
      "personal");
  const Answer refused =
      stage.call("memory_add", R"({"text":"c","store":"project",)" + outside + "}");
  EXPECT_TRUE(refused.isError);
  EXPECT_THAT(refused.text, HasSubstr("There is no project here"));

  stage.set("QUILLSTEAD_HOME", stage.path("chosen"));
  const Answer chosen = stage.call("memory_add", R"({"text":"d","store":"personal"})");
  EXPECT_TRUE(
      std::filesystem::exists(stage.path("chosen/memory/" + chosen.metaText("quillstead/file"))));
}

TEST(MemoryAdd, LeavesNothingElseBehind) {
  const MemoryStage stage;
  (void)stage.call("memory_add", R"({"text":"x"})");
  int files = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(stage.path("project/.quillstead/memory"))) {
    EXPECT_THAT(entry.path().filename().string(), ::testing::MatchesRegex("x-[0-9a-z]{6}\\.md"));
    ++files;
  }
  EXPECT_EQ(files, 1);
}

TEST(MemoryAdd, RemovesWhatAKilledServerLeftHalfWritten) {
  const MemoryStage stage;
  const std::string name = "project/.quillstead/memory/.quillstead-new-1-1.tmp";
  stage.write(name, "half");
  std::filesystem::last_write_time(
      stage.path(name), std::filesystem::file_time_type::clock::now() - std::chrono::hours(2));
  (void)stage.call("memory_add", R"({"text":"x"})");
  EXPECT_FALSE(std::filesystem::exists(stage.path(name)));
}

TEST(MemoryAdd, SaysWhyItCouldNot) {
  const MemoryStage stage;
  stage.write("project/.quillstead/memory", "a file in the way");
  const Answer answer = stage.call("memory_add", R"({"text":"x"})");
  EXPECT_TRUE(answer.isError);
  EXPECT_THAT(answer.text, HasSubstr("Not remembered: the directory"));

  const Answer huge = stage.call(
      "memory_add", R"({"store":"personal","text":")" + std::string(1'100'000, 'x') + "\"}");
  EXPECT_TRUE(huge.isError);
  EXPECT_THAT(huge.text, HasSubstr("larger than 1 MiB"));
}

TEST(MemoryAdd, RefusesWhatWouldNeverBeShown) {
  const MemoryStage stage;
  const auto add = [&](const std::string& text) {
    return stage.call("memory_add", R"({"title":"t","text":")" + text + "\"}");
  };
  const Answer conflict = add(R"(<<<<<<< a\n1\n=======\n2\n>>>>>>> b)");
  EXPECT_TRUE(conflict.isError);
  EXPECT_THAT(conflict.text, HasSubstr("conflict marks"));
  EXPECT_FALSE(add(R"(  <<<<<<< a\n  1\n  =======\n  2\n  >>>>>>> b)").isError);

  const Answer comment = add("<!-- a note\\nfor people -->");
  EXPECT_TRUE(comment.isError);
  EXPECT_THAT(comment.text, HasSubstr("only an HTML comment"));
  EXPECT_FALSE(add("<!-- a note --> and more").isError);
}

TEST(MemoryAdd, RefusesArgumentsOfAWrongKind) {
  const MemoryStage stage;
  for (const char* const arguments :
       {"{}", R"({"text":""})", R"({"text":" \n"})", R"({"text":5})", R"({"text":"a\u0000b"})",
        R"({"text":"x","title":5})", R"({"text":"x","tags":5})", R"({"text":"x","tags":[5]})",
        R"({"text":"x","store":"both"})", R"({"text":"x","_quillstead_session":5})"}) {
    EXPECT_TRUE(stage.call("memory_add", arguments).isError) << arguments;
  }
  EXPECT_FALSE(std::filesystem::exists(stage.path("project/.quillstead/memory")));
}

TEST(MemoryAdd, TakesTagsAsOneText) {
  const MemoryStage stage;
  const Answer added = stage.call("memory_add", R"({"text":"x","tags":" a , ,b "})");
  EXPECT_THAT(textOf(stage, added), HasSubstr("tags: [a, b]\n"));
}

}  // namespace

}  // namespace quillstead::server::test
