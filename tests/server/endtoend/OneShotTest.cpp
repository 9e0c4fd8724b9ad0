#include "server/LinkedLibraries.h"
#include "server/endtoend/ProgramRun.h"
#include "server/helpers/MemoryStage.h"
#include "unit/helpers/JSONValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server::test {

namespace {

using ::testing::HasSubstr;

constexpr std::string_view handshake =
    R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2024-11-05",)"
    R"("capabilities":{},"clientInfo":{"name":"codex","version":"1"}}})";

ProgramEnd served(const MemoryStage& stage, const std::string& input) {
  return ProgramRun({.executable = serverProgram(),
                     .arguments = {},
                     .environment = stage.environment(),
                     .input = input})
      .finish();
}

std::vector<std::string> linesOf(const std::string& output) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end = output.find('\n'); end != std::string::npos;
       end = output.find('\n', begin)) {
    lines.push_back(output.substr(begin, end - begin));
    begin = end + 1;
  }
  EXPECT_EQ(begin, output.size()) << "a line without its end";
  return lines;
}

/// The most memory, in bytes, that a program needed which this process started and saw to its end.
long mostMemoryOfAChild() {
  rusage usage{};
  EXPECT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
#if defined(__APPLE__)
  constexpr long unit = 1;
#else
  constexpr long unit = 1'024;
#endif
  return usage.ru_maxrss * unit;
}

TEST(OneShot, HoldsNoMoreOfALargeBatchThanOneAnswer) {
  const MemoryStage stage;
  std::string batch = "[";
  constexpr int count = 20'000;
  for (int id = 0; id < count; ++id) {
    if (id > 0) batch += ',';
    batch += R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"method":"tools/list"})";
  }
  const ProgramEnd end = served(stage, batch + "]\n");
  EXPECT_EQ(end.status, 0);
  EXPECT_GT(end.output.size(), 40'000'000U);
  EXPECT_TRUE(end.output.starts_with("[{") && end.output.ends_with("}]\n"));
  constexpr long most = QUILLSTEAD_SANITIZED ? 800'000'000 : 100'000'000;  // bytes
  EXPECT_LE(mostMemoryOfAChild(), most);
}

TEST(OneShot, AnswersABatchOfAHundredThousandCallsInLittleMemory) {
  const MemoryStage stage;
  constexpr int count = 100'000;
  std::string batch = "[";
  for (int id = 0; id < count; ++id) {
    if (id > 0) batch += ',';
    batch += callRequest(id, "grab", R"({"name":5,"cwd":"/"})");
  }
  const ProgramEnd end = served(stage, batch + "]\n");
  EXPECT_EQ(end.status, 0);
  EXPECT_TRUE(end.output.starts_with("[{") && end.output.ends_with("}]\n"));
  EXPECT_THAT(end.output, HasSubstr(R"("id":99999,)"));
  constexpr long most = QUILLSTEAD_SANITIZED ? 1'200'000'000 : 300'000'000;  // bytes
  EXPECT_LE(mostMemoryOfAChild(), most);
}

TEST(OneShot, SaysThatACardIsTooLargeForTheLimitOfItsFiles) {
  const MemoryStage stage;
  const std::string request =
      callRequest(2, "memory_add", R"({"text":")" + std::string(100'000, 'x') + R"("})");
  const ProgramEnd end =
      ProgramRun({.executable = "/bin/sh",
                  .arguments = {"-c", "ulimit -f 40; exec \"$0\"", serverProgram()},
                  .environment = stage.environment(),
                  .input = request + "\n"})
          .finish();
  EXPECT_EQ(end.status, 0);
  EXPECT_THAT(end.output, HasSubstr("Not remembered"));
}

TEST(OneShot, AnswersBothRequestsBeforeItExits) {
  const MemoryStage stage;
  stage.writeProjectCard("a.md", "# A\n\nheron");
  const std::string arguments = R"({"prompt":"heron","cwd":)" + jsonText(stage.project()) + "}";
  const std::string requests =
      std::string(handshake) + "\n" + callRequest(2, "memory_get_relevant", arguments);
  for (const std::string& input : {requests + "\n", requests}) {
    const ProgramEnd end = served(stage, input);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    const std::vector<std::string> lines = linesOf(end.output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], HasSubstr(R"("protocolVersion":"2024-11-05")"));
    EXPECT_THAT(answerIn(lines[1]).text, HasSubstr("## A\n"));
  }
}

TEST(OneShot, EndsWellWithoutAnyRequest) {
  const MemoryStage stage;
  for (const char* const input : {"", "\n", "\n\n  \n"}) {
    const ProgramEnd end = served(stage, input);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.output, "");
  }
}

TEST(OneShot, AnswersEverythingBetweenGarbage) {
  const MemoryStage stage;
  std::string input;
  constexpr int count = 200;
  for (int number = 0; number < count; ++number) {
    input +=
        "{garbage\n" +
        callRequest(number, "memory_add", R"({"text":"Fact )" + std::to_string(number) + R"("})") +
        "\n\xFF\xFE\n";
  }
  const ProgramEnd end = served(stage, input);
  EXPECT_EQ(end.status, 0);
  const std::vector<std::string> lines = linesOf(end.output);
  ASSERT_EQ(lines.size(), 3U * count);
  for (std::size_t number = 0; number < count; ++number) {
    EXPECT_FALSE(answerIn(lines[3 * number + 1]).isError);
  }
}

TEST(OneShot, WorksWithoutAUsableHome) {
  MemoryStage stage;
  stage.set("XDG_CACHE_HOME", stage.path("cache"));
  stage.set("QUILLSTEAD_HOME", stage.path("chosen"));
  stage.writeProjectCard("a.md", "# A\n\nheron");
  const std::string request =
      callRequest(2, "rules_get", R"({"cwd":)" + jsonText(stage.project()) + "}");
  for (const bool isSet : {true, false}) {
    if (isSet) {
      stage.set("HOME", "");
    } else {
      stage.unset("HOME");
    }
    const ProgramEnd end = served(stage, request);
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.output, HasSubstr("Memory holds 1 card"));
  }
}

TEST(OneShot, TellsItsVersionAndUse) {
  const MemoryStage stage;
  const auto told = [&](const std::string& argument, const std::string& second = {}) {
    const std::vector<std::string> both{argument, second};
    return ProgramRun({.executable = serverProgram(),
                       .arguments = {both.begin(), both.end() - (second.empty() ? 1 : 0)},
                       .environment = stage.environment(),
                       .input = {}})
        .finish();
  };
  for (const char* const argument : {"--version", "-V"}) {
    EXPECT_THAT(told(argument).output, ::testing::MatchesRegex("quillstead-mcp [0-9.]+\n"));
    EXPECT_EQ(told(argument).status, 0);
    EXPECT_EQ(told(argument, "--verbose").output,
              told(argument).output + LinkedLibraries::lines() + "\n");
  }
  for (const char* const argument : {"--help", "-h"}) {
    EXPECT_THAT(told(argument).output, HasSubstr("takes no arguments"));
    EXPECT_EQ(told(argument).status, 0);
  }
  EXPECT_EQ(told("--wrong").status, 2);
  EXPECT_EQ(told("--wrong").output, "");
}

}  // namespace

}  // namespace quillstead::server::test
