#include "FullPipe.h"
#include "HookTest.h"

#include <csignal>
#include <string>
#include <vector>

namespace quillstead {
namespace {

constexpr std::string_view probe = "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS";
const std::vector<int> faults{SIGILL, SIGTRAP, SIGSEGV, SIGBUS, SIGFPE, SIGABRT};
const std::string pretool = "pretool";

/// More than a pipe holds.
const std::string large(300'000, 'l');

class FailOpenBelt : public HookTest {
 protected:
  static std::vector<Harness> harnessesWithSilence() {
    std::vector<Harness> with;
    for (const Harness& harness : harnesses()) {
      if (harness.silence) with.push_back(harness);
    }
    return with;
  }

  /// Waits for the hook's call number `count`, sends it a fault, and sees it to its end.
  [[nodiscard]] HookEnd faultDuringCall(const HookStart& start, const Harness& harness, int fault,
                                        std::size_t count) const {
    HookRun run(start);
    run.feed(harness.payload({}));
    run.closeInput();
    (void)server.awaitCall(count);
    run.send(fault);
    return run.finish();
  }

  void expectSilence(const HookEnd& end, const std::string& silence) const {
    EXPECT_EQ(end.output, silence);
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(end.status, 0);
    EXPECT_TRUE(logLines().empty());
  }
};

TEST_F(FailOpenBelt, AnswersAStackOverflowWithTheSilence) {
  for (const Harness& harness : harnessesWithSilence()) {
    for (const std::string& slot : promptSlots) {
      SCOPED_TRACE(harness.name + " " + slot);
      HookStart start = starting(harness, slot);
      start.environment[std::string(probe)] = "1";
      HookRun run(start);
      run.awaitAnswer();  // before standard input is read
      expectSilence(run.finish(), harness.silentOutput());
    }
  }
  EXPECT_TRUE(server.calls().empty());
}

TEST_F(FailOpenBelt, AnswersAStackOverflowOfEveryStampWithAnEmptyObject) {
  for (const Harness& harness : harnesses()) {
    SCOPED_TRACE(harness.name);
    HookStart start = starting(harness, pretool);
    start.environment[std::string(probe)] = "1";
    HookRun run(start);
    run.awaitAnswer();
    expectSilence(run.finish(), "{}\n");
  }
}

TEST_F(FailOpenBelt, AnswersAStackOverflowThatIsBlockedAtTheStart) {
  for (const Harness& harness : harnessesWithSilence()) {
    HookStart start = starting(harness, "recall");
    start.environment[std::string(probe)] = "1";
    start.blockedSignals = faults;
    start.ignoredSignals = faults;
    expectSilence(runHook(start, "{}"), harness.silentOutput());
  }
}

TEST_F(FailOpenBelt, IsNotPutOnForAHarnessWithoutSilence) {
  const Harness& claudeCode = harness("claude-code");
  for (const std::string& slot : promptSlots) {
    HookStart start = starting(claudeCode, slot);
    start.environment[std::string(probe)] = "1";
    const HookEnd end = runHook(start, "{}");
    EXPECT_EQ(end.output, "");
    EXPECT_THAT(end.signal, ::testing::AnyOf(SIGSEGV, SIGBUS));
  }
}

TEST_F(FailOpenBelt, IsTriedByNothingButTheExactValue) {
  server.answer(rulesTool, "R", rulesMeta);
  for (const Harness& harness : harnesses()) {
    for (const std::string value : {"true", "0", "", " 1", "1 ", "01", "yes", "11"}) {
      HookStart start = starting(harness, "rules");
      start.environment[std::string(probe)] = value;
      EXPECT_THAT(runHook(start, "{}").output, isAnswer(harness.envelope("R"))) << value;
      start.arguments.back() = pretool;
      EXPECT_EQ(runHook(start, "{}").output, "{}\n");
    }
  }
}

TEST_F(FailOpenBelt, AnswersAFaultWhileTheServerIsAwaited) {
  server.sleepForEver(rulesTool);
  std::size_t calls = 0;
  for (const Harness& harness : harnessesWithSilence()) {
    for (const int fault : faults) {
      SCOPED_TRACE(harness.name + " " + std::to_string(fault));
      const HookStart start = starting(harness, "");
      expectSilence(faultDuringCall(start, harness, fault, ++calls), harness.silentOutput());
    }
  }
}

TEST_F(FailOpenBelt, AnswersAFaultThatWasBlockedAndIgnoredAtTheStart) {
  server.sleepForEver(rulesTool);
  std::size_t calls = 0;
  for (const Harness& harness : harnessesWithSilence()) {
    for (const int fault : faults) {
      SCOPED_TRACE(harness.name + " " + std::to_string(fault));
      HookStart start = starting(harness, "recall");
      start.blockedSignals = faults;
      start.ignoredSignals = faults;
      expectSilence(faultDuringCall(start, harness, fault, ++calls), harness.silentOutput());
    }
  }
}

TEST_F(FailOpenBelt, GivesUpWhatOneLaneHasBrought) {
  server.answer(rulesTool, "R", rulesMeta);
  server.sleepForEver(memoryTool);
  std::size_t calls = 0;
  for (const Harness& harness : harnessesWithSilence()) {
    const HookStart start = starting(harness, "");
    calls += 2;
    expectSilence(faultDuringCall(start, harness, SIGSEGV, calls), harness.silentOutput());
  }
}

TEST_F(FailOpenBelt, LetsAFaultKillTheHookOfAHarnessWithoutSilence) {
  server.sleepForEver(rulesTool);
  std::size_t calls = 0;
  for (const int fault : faults) {
    const HookStart start = starting(harness("claude-code"), "recall");
    const HookEnd end = faultDuringCall(start, harness("claude-code"), fault, ++calls);
    EXPECT_EQ(end.output, "");
    EXPECT_EQ(end.status, std::nullopt) << fault;
    EXPECT_EQ(end.signal, fault);
  }
}

TEST_F(FailOpenBelt, IsOnBeforeThePayloadIsRead) {
  const std::string payload = R"({"prompt":")" + large;
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : {std::string("recall"), pretool}) {
      if (slot != pretool && !harness.silence) continue;
      for (const int fault : faults) {
        const HookStart start = starting(harness, slot);
        HookRun run(start);
        run.feed(payload);  // more than the pipe holds, so that the hook has begun to read
        run.send(fault);
        expectSilence(run.finish(), slot == pretool ? "{}\n" : harness.silentOutput());
      }
    }
  }
}

/// Nothing holds the hook up between its answer and its end, so the fault may come when a
/// sanitizer's leak check has begun, which waits for ever then. (Faults at each system call behind
/// the answer are faults.crash_safety's.)
void strikeBeforeLeaksAreLookedFor(HookStart& start) {
  start.environment["ASAN_OPTIONS"] = "detect_leaks=0";
}

TEST_F(FailOpenBelt, GivesNoSecondAnswerAfterAFaultBehindTheFirst) {
  server.answer(rulesTool, "R", rulesMeta);
  for (const Harness& harness : harnessesWithSilence()) {
    for (const int fault : faults) {
      SCOPED_TRACE(harness.name + " " + std::to_string(fault));
      HookStart start = starting(harness, "rules");
      strikeBeforeLeaksAreLookedFor(start);
      start.environment["QUILLSTEAD_HOOK_LOG"] =
          workspace.path(harness.name + std::to_string(fault));
      const FullPipe log(start.environment["QUILLSTEAD_HOOK_LOG"]);
      HookRun run(start);
      run.feed("{}");
      run.closeInput();
      run.awaitAnswer();
      run.send(fault);
      const HookEnd end = run.finish();
      EXPECT_THAT(end.output, isAnswer(harness.envelope("R")));
      EXPECT_EQ(end.status, 0);
      EXPECT_EQ(log.drain().find_first_not_of('.'), std::string::npos);
    }
  }
}

TEST_F(FailOpenBelt, GivesNoSecondAnswerAfterAFaultBehindTheSilence) {
  server.answer(rulesTool, "", emptyMeta);
  for (const Harness& harness : harnessesWithSilence()) {
    HookStart start = starting(harness, "rules");
    strikeBeforeLeaksAreLookedFor(start);
    start.environment["QUILLSTEAD_HOOK_LOG"] = workspace.path(harness.name);
    const FullPipe log(start.environment["QUILLSTEAD_HOOK_LOG"]);
    HookRun run(start);
    run.feed("{}");
    run.closeInput();
    run.awaitAnswer();
    run.send(SIGSEGV);
    const HookEnd end = run.finish();
    EXPECT_EQ(end.output, harness.silentOutput());
    EXPECT_EQ(end.status, 0);
  }
}

TEST_F(FailOpenBelt, LetsAnAnswerThatIsBeingWrittenComeWhole) {
  server.answer(rulesTool, large, rulesMeta);
  const Harness& openCode = harness("opencode");
  for (const int fault : faults) {
    const HookStart start = starting(openCode, "rules");
    HookRun run(start);
    run.feed("{}");
    run.closeInput();
    run.awaitAnswer();  // more than the pipe holds, so that the hook is writing
    run.send(fault);
    const HookEnd end = run.finish();
    EXPECT_TRUE(end.output == R"({"context":")" + large + "\"}\n") << end.output.size();
    EXPECT_EQ(end.status, 0);
  }
}

TEST_F(FailOpenBelt, LetsAStampThatIsBeingWrittenComeWhole) {
  const std::string payload =
      R"({"tool_name":"mcp__quillstead__grab","agent_id":"a","tool_input":{"l":")" + large + "\"}}";
  for (const int fault : faults) {
    const HookStart start = starting(harness("claude-code"), pretool);
    HookRun run(start);
    run.feed(payload);
    run.closeInput();
    run.awaitAnswer();
    run.send(fault);
    const HookEnd end = run.finish();
    EXPECT_TRUE(end.output ==
                R"({"hookSpecificOutput":{"hookEventName":"PreToolUse","updatedInput":{"l":")" +
                    large + R"(","_quillstead_subagent":"a"}}})" + "\n")
        << end.output.size();
    EXPECT_EQ(end.status, 0);
  }
}

TEST_F(FailOpenBelt, EndsTheHookAlsoWhenNobodyListens) {
  server.sleepForEver(rulesTool);
  std::size_t calls = 0;
  for (const Harness& harness : harnessesWithSilence()) {
    const HookStart start = starting(harness, "rules");
    HookRun run(start);
    run.stopListening();
    run.feed("{}");
    run.closeInput();
    (void)server.awaitCall(++calls);
    run.send(SIGSEGV);
    EXPECT_EQ(run.finish().status, 0);
  }
}

}  // namespace
}  // namespace quillstead
