#include "HookTest.h"

#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace quillstead {
namespace {

const std::string rules = rulesBlock("R");
const std::string memory = memoryBlock("", {"card"});
const std::string trail = "card=miss rules=1 cards=1";

class StartConditions : public HookTest {
 protected:
  void SetUp() override {
    server.answer(rulesTool, rules, rulesMeta);
    server.answer(memoryTool, memory, cardsMeta({"card"}));
  }

  void expectServed(const HookStart& start, const Harness& harness) const {
    forgetLog();
    const HookEnd end = runHook(start, harness.payload({}));
    EXPECT_THAT(end.output, isAnswer(harness.envelope(rules + "\n\n" + memory))) << harness.name;
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(onlyRecord().trail, trail);
  }

  /// Every choice of 0, 1 and 2.
  static std::vector<std::vector<int>> choicesOfStreams() {
    std::vector<std::vector<int>> choices;
    for (unsigned bits = 0; bits < 8; ++bits) {
      std::vector<int> choice;
      for (int stream = 0; stream < 3; ++stream) {
        if ((bits >> static_cast<unsigned>(stream)) & 1U) choice.push_back(stream);
      }
      choices.push_back(choice);
    }
    return choices;
  }

  static bool has(const std::vector<int>& numbers, int number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
  }
};

TEST_F(StartConditions, MayHaveTheEndOfChildrenIgnored) {
  for (const Harness& harness : harnesses()) {
    HookStart start = starting(harness, "");
    start.ignoredSignals = {SIGCHLD};
    expectServed(start, harness);
  }
}

TEST_F(StartConditions, MayHaveSignalsBlocked) {
  std::vector<int> all;
  for (int signal = 1; signal < 32; ++signal) all.push_back(signal);
  for (const Harness& harness : harnesses()) {
    for (const auto& blocked : {std::vector{SIGCHLD}, all}) {
      HookStart start = starting(harness, "");
      start.blockedSignals = blocked;
      expectServed(start, harness);
      start.ignoredSignals = {SIGCHLD};
      expectServed(start, harness);
    }
  }
}

TEST_F(StartConditions, WithSignalsBlockedStillKillTheServerInTime) {
  server.sleepForEver(rulesTool);
  HookStart start = starting(harness("codex"), "rules");
  start.blockedSignals = {SIGCHLD, SIGALRM, SIGTERM, SIGPIPE};
  start.ignoredSignals = {SIGCHLD};
  EXPECT_EQ(runHook(start, "{}").output, harness("codex").silentOutput());
  EXPECT_EQ(onlyRecord().trail, "slot=rules rules=MISS:timeout");
  awaitThat([&] { return !server.calls().at(0).isAlive(); });
}

TEST_F(StartConditions, MayHaveAnyStandardStreamClosed) {
  for (const Harness& harness : harnesses()) {
    for (const std::vector<int>& closed : choicesOfStreams()) {
      SCOPED_TRACE(harness.name + ::testing::PrintToString(closed));
      const std::size_t callsBefore = server.calls().size();
      HookStart start = starting(harness, "");
      start.closedDescriptors = closed;
      forgetLog();
      const HookEnd end = runHook(start, harness.payload({.directory = "/nonexistent"}));
      EXPECT_EQ(end.status, 0);
      EXPECT_EQ(end.error.empty(), has(closed, 0) || has(closed, 2));
      if (has(closed, 0)) {  // as good as unreadable
        EXPECT_EQ(end.output, has(closed, 1) ? "" : harness.silentOutput());
        EXPECT_TRUE(logLines().empty());
        EXPECT_EQ(server.calls().size(), callsBefore);
        continue;
      }
      if (has(closed, 1)) {
        EXPECT_EQ(end.output, "");
      } else {
        EXPECT_THAT(end.output, isAnswer(harness.envelope(rules + "\n\n" + memory)));
      }
      EXPECT_EQ(onlyRecord().trail, trail);
      ASSERT_EQ(server.calls().size(), callsBefore + 2);
      EXPECT_EQ(server.calls().back().descriptors, "0 1 2 ");
    }
  }
}

TEST_F(StartConditions, MayHaveAnyStandardStreamClosedBeforeATool) {
  const std::string payload = R"({"tool_name":"MCP:grab","session_id":"s","tool_input":{}})";
  for (const Harness& harness : harnesses()) {
    for (const std::vector<int>& closed : choicesOfStreams()) {
      HookStart start = starting(harness, "pretool");
      start.closedDescriptors = closed;
      const HookEnd end = runHook(start, payload);
      EXPECT_EQ(end.status, 0);
      EXPECT_EQ(end.error, "");
      const bool isStamped = harness.name == "cursor" && !has(closed, 0);
      const std::string answer =
          isStamped ? "{\"updated_input\":{\"_quillstead_session\":\"s\"}}\n" : "{}\n";
      EXPECT_EQ(end.output, has(closed, 1) ? "" : answer);
    }
  }
}

TEST_F(StartConditions, OfARefusalMayBeAnyToo) {
  for (const std::vector<int>& closed : choicesOfStreams()) {
    HookStart start = starting(std::vector<std::string>{});
    start.closedDescriptors = closed;
    const HookEnd end = runHook(start, "");
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.output, has(closed, 1) ? "" : "{\"continue\":true}\n");
    EXPECT_EQ(end.error.empty(), has(closed, 2));
  }
}

TEST_F(StartConditions, WithAnUnreadableInputEndInSilence) {
  writeFile(workspace.path("empty"), "");
  for (const Harness& harness : harnesses()) {
    for (const std::string& path : {std::string("/"), workspace.path("empty")}) {
      HookStart start = starting(harness, "recall");
      start.inputPath = path;
      HookEnd end = runHook(start, "");
      EXPECT_EQ(end.output, harness.silentOutput());
      EXPECT_EQ(end.status, 0);
      start.arguments.back() = "pretool";
      end = runHook(start, "");
      EXPECT_EQ(end.output, "{}\n");
      EXPECT_EQ(end.status, 0);
    }
  }
  EXPECT_TRUE(server.calls().empty());
  EXPECT_TRUE(logLines().empty());
}

TEST_F(StartConditions, WithAnInputThatIsNotReadyEndInSilence) {
  HookStart start = starting(harness("codex"), "recall");
  start.nonBlocking = 0;
  HookRun run(start);
  run.awaitAnswer();
  EXPECT_EQ(run.finish().output, harness("codex").silentOutput());
}

TEST_F(StartConditions, MayGiveFilesAsStandardStreams) {
  for (const Harness& harness : harnesses()) {
    HookStart start = starting(harness, "");
    start.inputPath = workspace.path("payload");
    start.outputPath = workspace.path(harness.name);
    writeFile(start.inputPath, harness.payload({}));
    writeFile(start.outputPath, "before\n");
    EXPECT_EQ(runHook(start, "").status, 0);
    const std::string output = contentOf(start.outputPath);
    ASSERT_TRUE(output.starts_with("before\n"));
    EXPECT_THAT(output.substr(7), isAnswer(harness.envelope(rules + "\n\n" + memory)));
  }
}

TEST_F(StartConditions, MayBeThatNobodyListens) {
  for (const Harness& harness : harnesses()) {
    forgetLog();
    const HookStart start = starting(harness, "");
    HookRun run(start);
    run.stopListening();
    run.stopListeningToErrors();
    run.feed(harness.payload({.directory = "/nonexistent"}));
    EXPECT_EQ(run.finish().status, 0);
    EXPECT_EQ(onlyRecord().trail, trail);
  }
}

TEST_F(StartConditions, MayBeThatNobodyListensBeforeATool) {
  for (const Harness& harness : harnesses()) {
    const HookStart start = starting(harness, "pretool");
    HookRun run(start);
    run.stopListening();
    run.feed("{}");
    EXPECT_EQ(run.finish().status, 0);
  }
}

TEST_F(StartConditions, MayBeThatNobodyListensToARefusal) {
  const HookStart start = starting({"--harness", "nobody"});
  HookRun run(start);
  run.stopListening();
  run.stopListeningToErrors();
  EXPECT_EQ(run.finish().status, 0);
}

TEST_F(StartConditions, MayGiveNoRoomForAnythingWritten) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "needs /dev/full";
  for (const Harness& harness : harnesses()) {
    for (const std::string slot : {"", "rules", "pretool"}) {
      HookStart start = starting(harness, slot);
      start.outputPath = "/dev/full";
      start.errorPath = "/dev/full";
      forgetLog();
      const HookEnd end = runHook(start, harness.payload({.directory = "/nonexistent"}));
      EXPECT_EQ(end.status, 0);
      EXPECT_EQ(logLines().size(), slot == "pretool" ? 0U : 1U);
    }
  }
  HookStart refused = starting(std::vector<std::string>{});
  refused.outputPath = "/dev/full";
  refused.errorPath = "/dev/full";
  EXPECT_EQ(runHook(refused, "").status, 0);
}

TEST_F(StartConditions, MayGiveAnOutputThatDoesNotBlock) {
  const std::string large(500'000, 'r');
  server.answer(rulesTool, large, rulesMeta);
  HookStart start = starting(harness("opencode"), "rules");
  start.nonBlocking = 1;
  const HookEnd end = runHook(start, "{}");
  EXPECT_TRUE(end.output == R"({"context":")" + large + "\"}\n") << end.output.size();
}

TEST_F(StartConditions, MayBeADirectoryThatIsGone) {
  for (const Harness& harness : harnesses()) {
    HookStart start = starting(harness, "");
    start.directory = workspace.path(harness.name);
    std::filesystem::create_directory(start.directory);
    forgetLog();
    HookRun run(start);
    run.feed(std::string(200'000, ' '));  // it runs, in its directory
    std::filesystem::remove(start.directory);
    run.feed(harness.payload({.directory = "/nonexistent"}));
    const HookEnd end = run.finish();
    EXPECT_THAT(end.output, isAnswer(harness.envelope(rules + "\n\n" + memory)));
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(logLines().size(), 1U);
  }
}

}  // namespace
}  // namespace quillstead
