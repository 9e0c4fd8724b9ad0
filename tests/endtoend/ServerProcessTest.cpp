#include "HookTest.h"

#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace quillstead {
namespace {

/// The hook promises to stay below this, whatever a server writes.
constexpr std::size_t mostMemory = isSanitized ? 2'000'000'000 : 200'000'000;

class ServerProcess : public HookTest {
 protected:
  /// Runs OpenCode's hook, which has no budget, and gives the trail without card words.
  [[nodiscard]] std::string trailOf(const std::string& slot, std::string_view payload) const {
    HookStart start = starting(openCode, slot);
    start.environment["QUILLSTEAD_RULES_CARD"] = "0";
    return trailOf(start, payload);
  }

  [[nodiscard]] std::string trailOf(const HookStart& start, std::string_view payload) const {
    forgetLog();
    const HookEnd end = runHook(start, payload);
    EXPECT_EQ(end.status, 0);
    return onlyRecord().trail;
  }

  const Harness& openCode = harness("opencode");
};

TEST_F(ServerProcess, ThatCannotBeStartedIsNotTriedAgain) {
  const std::string plainFile = workspace.path("plain-file");
  writeFile(plainFile, "not a program\n");
  const std::string nonsense = workspace.path("nonsense");
  writeFile(nonsense,
            "\x7f"
            "ELFnot really");
  chmod(nonsense.c_str(), 0755);
  for (const std::string& path :
       {std::string("/nonexistent/server"), plainFile, nonsense, workspace.path(),
        plainFile + "/below", std::string("no-such"), std::string("/"), std::string()}) {
    SCOPED_TRACE(path);
    for (const Harness& harness : harnesses()) {
      HookStart start = starting(harness, "recall");
      start.environment["QUILLSTEAD_MCP_BIN"] = path;
      forgetLog();
      const HookEnd end = runHook(start, harness.payload({}));
      EXPECT_EQ(end.output, harness.silentOutput());
      EXPECT_EQ(end.error, "");
      EXPECT_EQ(onlyRecord().trail, "slot=recall rules=MISS:no-envelope cards=MISS:declined");
      EXPECT_EQ(onlyRecord().stageNames(), "parse rules compose write");
    }
  }
}

TEST_F(ServerProcess, ThatFailsIsNotTriedAgain) {
  server.answer(rulesTool, rulesBlock("R"), rulesMeta);
  server.answer(memoryTool, memoryBlock("", {"a card"}), cardsMeta({"a card"}));
  for (const int status : {1, 3, 127, 255}) {
    server.set(rulesTool, "status", status);
    EXPECT_EQ(trailOf("recall", openCode.payload({})),
              "slot=recall rules=MISS:no-envelope cards=MISS:declined");
    EXPECT_EQ(server.calls().back().tool(), rulesTool);
  }
}

TEST_F(ServerProcess, ThatDiesByASignalIsNotTriedAgain) {
  server.answer(rulesTool, rulesBlock("R"), rulesMeta);
  for (const int signal : {SIGTERM, SIGKILL, SIGSEGV, SIGABRT, SIGHUP}) {
    server.set(rulesTool, "signal", signal);
    EXPECT_EQ(trailOf("", openCode.payload({})), "rules=MISS:no-envelope cards=MISS:declined");
  }
}

TEST_F(ServerProcess, ThatFailsForTheMemoryLeavesTheRules) {
  server.answer(rulesTool, rulesBlock("R"), rulesMeta);
  server.answer(memoryTool, memoryBlock("", {"a card"}), cardsMeta({"a card"}));
  server.set(memoryTool, "status", 1);
  for (const Harness& harness : harnesses()) {
    forgetLog();
    const HookEnd end = run(harness, "", harness.payload({}));
    EXPECT_THAT(end.output, isAnswer(harness.envelope(rulesBlock("R"))));
    EXPECT_EQ(onlyRecord().trail, "card=miss rules=1 cards=MISS:no-envelope");
  }
}

TEST_F(ServerProcess, ThatWritesNothingIsMissed) {
  EXPECT_EQ(trailOf("recall", openCode.payload({})),
            "slot=recall rules=MISS:no-envelope cards=MISS:no-envelope");
}

TEST_F(ServerProcess, IsReadToTheEndHoweverItWrites) {
  for (const std::size_t size : {std::size_t{40'000}, std::size_t{16'384}, std::size_t{65'536}}) {
    const std::string text(size, 'r');
    server.answer(rulesTool, text, rulesMeta);
    for (const int piece : {700, 16'384, 1'000'000}) {
      server.set(rulesTool, "pieces", piece);
      const HookEnd end = run(openCode, "rules", "{}");
      EXPECT_THAT(end.output, isAnswer(openCode.envelope(text))) << size << " in " << piece;
    }
  }
}

TEST_F(ServerProcess, MayWriteMegabytes) {
  std::string text;
  while (text.size() < 2'000'000) text += "rule " + std::to_string(text.size()) + "\n";
  server.answer(rulesTool, text, rulesMeta);
  const HookEnd end = run(openCode, "rules", "{}");
  EXPECT_TRUE(end.output == R"({"context":)" + jsonString(text) + "}\n");
}

TEST_F(ServerProcess, MayWrite40MegabytesBeforeItsReply) {
  HookStart start = starting(openCode, "rules");
  start.environment["QUILLSTEAD_MCP_BIN"] = childExecutable("AnswersBehindManyLines");
  const HookEnd end = runHook(start, openCode.payload({}));
  EXPECT_EQ(onlyRecord().trail, "slot=rules card=1 rules=1");
  EXPECT_THAT(end.output, ::testing::HasSubstr("Always test."));
  EXPECT_LT(end.peakMemory, mostMemory);
}

TEST_F(ServerProcess, MakesNoHookLargeByFloodingIt) {
  for (const char* const child : {"FloodsBothStreams", "AnswersOnAnEndlessLine"}) {
    HookStart start = starting(openCode, "rules");
    start.environment["QUILLSTEAD_MCP_BIN"] = childExecutable(child);
    const HookEnd end = runHook(start, openCode.payload({}));
    EXPECT_EQ(end.output, openCode.silentOutput());
    EXPECT_LT(end.peakMemory, mostMemory) << child;
  }
}

TEST_F(ServerProcess, MakesNoHookLargeByLongReplies) {
  const std::string text(15'000'000, '/');  // each is two bytes in the answer
  server.answer(rulesTool, text, rulesMeta);
  server.answer(memoryTool, text, R"({"quillstead/replyKind":"cards","quillstead/cardCount":1})");
  const HookEnd end = run(openCode, "", openCode.payload({}));
  EXPECT_GT(end.output.size(), 4 * text.size());
  EXPECT_LT(end.peakMemory, mostMemory);

  server.answer(rulesTool, std::string(17'000'000, 'x'), rulesMeta);
  EXPECT_EQ(run(openCode, "rules", "{}").output, openCode.silentOutput());
}

TEST_F(ServerProcess, MayFloodItsStandardErrorWithoutBlocking) {
  server.answer(rulesTool, rulesBlock("R"), rulesMeta);
  server.set(rulesTool, "error", std::string(3'000'000, 'e'));
  const HookEnd end = run(openCode, "rules", "{}");
  EXPECT_THAT(end.output, isAnswer(openCode.envelope(rulesBlock("R"))));
  EXPECT_EQ(end.error, "");
}

TEST_F(ServerProcess, NeedNotReadItsInput) {
  server.set("unread");
  server.answer("any", "A", R"({"quillstead/replyKind":"cards","quillstead/cardCount":1})");
  const HookEnd end =
      run(openCode, "recall", openCode.payload({.prompt = std::string(5'000'000, 'p')}));
  EXPECT_EQ(end.status, 0);
  EXPECT_THAT(end.output, isAnswer(openCode.envelope("A")));
}

TEST_F(ServerProcess, IsReadBeyondItsEndWhenAnotherHoldsItsOutput) {
  server.answer(rulesTool, rulesBlock("R"), rulesMeta);
  server.set(rulesTool, "heir", "");
  server.set(rulesTool, "delay", 300);
  const HookEnd end = run(openCode, "rules", "{}");
  EXPECT_THAT(end.output, isAnswer(openCode.envelope(rulesBlock("R"))));
}

TEST_F(ServerProcess, GetsItsPathAsItsOnlyArgument) {
  run(openCode, "rules", "{}");
  EXPECT_THAT(server.calls().at(0).arguments,
              ::testing::ElementsAre(childExecutable("ScriptedServer")));
}

TEST_F(ServerProcess, GetsTheEnvironmentAndTheDirectoryOfTheHook) {
  HookStart start = starting(openCode, "recall");
  start.environment["WITH SPACE"] = "a=b\nc";
  start.environment["EMPTY"] = "";
  start.directory = workspace.path();
  runHook(start, openCode.payload({.directory = "/"}));
  std::vector<std::string> expected;
  for (const auto& [name, value] : start.environment) expected.push_back(name + "=" + value);
  ASSERT_EQ(server.calls().size(), 2U);
  for (const ServerCall& call : server.calls()) {
    EXPECT_THAT(call.environment, ::testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(call.directory, workspace.path());
  }
}

TEST_F(ServerProcess, GetsDefaultSignalsAndItsThreePipesWhateverTheHookGot) {
  std::vector<int> all;
  for (int signal = 1; signal < 32; ++signal) all.push_back(signal);
  for (const bool isBlocked : {false, true}) {
    HookStart start = starting(openCode, "recall");
    start.extraDescriptors = {3, 9, 17, 200};
    if (isBlocked) start.blockedSignals = all;
    start.ignoredSignals = {SIGCHLD, SIGPIPE, SIGTERM, SIGINT, SIGHUP, SIGUSR1, SIGALRM};
    runHook(start, openCode.payload({}));
  }
  ASSERT_EQ(server.calls().size(), 4U);
  for (const ServerCall& call : server.calls()) {
    EXPECT_EQ(call.ignored, "");
    EXPECT_EQ(call.blocked, "");
    EXPECT_EQ(call.descriptors, "0 1 2 ");
  }
}

TEST_F(ServerProcess, LeavesNoDescriptorOpenInTheHook) {
  if (!std::filesystem::exists("/proc/self/fd")) GTEST_SKIP() << "needs /proc to look at";
  for (const std::string_view tool : {rulesTool, memoryTool}) server.set(tool, "delay", 500);
  const HookStart start = starting(openCode, "recall");
  HookRun run(start);
  run.feed(openCode.payload({}));
  run.closeInput();
  const auto descriptors = [&] {
    const std::filesystem::directory_iterator open("/proc/" + std::to_string(run.process()) +
                                                   "/fd");
    return std::distance(begin(open), end(open));
  };
  (void)server.awaitCall(1);
  const auto atFirst = descriptors();
  (void)server.awaitCall(2);
  const auto atSecond = descriptors();
  EXPECT_EQ(atFirst, atSecond);
  EXPECT_GT(atFirst, 3);
  run.finish();
}

}  // namespace
}  // namespace quillstead
