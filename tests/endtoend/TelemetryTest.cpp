#include "FullPipe.h"
#include "HookTest.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <ctime>
#include <deque>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace quillstead {
namespace {

namespace fs = std::filesystem;

/// Milliseconds since the epoch.
std::int64_t wallClock() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

/// The same of a time stamp in UTC.
std::int64_t millisecondsOf(const std::string& timestamp) {
  std::tm time{};
  time.tm_year = std::stoi(timestamp.substr(0, 4)) - 1900;
  time.tm_mon = std::stoi(timestamp.substr(5, 2)) - 1;
  time.tm_mday = std::stoi(timestamp.substr(8, 2));
  time.tm_hour = std::stoi(timestamp.substr(11, 2));
  time.tm_min = std::stoi(timestamp.substr(14, 2));
  time.tm_sec = std::stoi(timestamp.substr(17, 2));
  return timegm(&time) * 1000 + std::stoi(timestamp.substr(20, 3));
}

class Telemetry : public HookTest {
 protected:
  void SetUp() override {
    const std::string index = "I";
    server.answer(rulesTool, rulesBlock("R", index),
                  R"({"quillstead/replyKind":"rules","quillstead/rulesLane":"card",)"
                  R"("quillstead/indexSpan":1})");
    server.answer(memoryTool, memoryBlock("", {"c"}),
                  cardsMeta({"c"}, R"(,"quillstead/shortcut":"<quillstead-shortcut>s",)"
                                   R"("quillstead/now":"<quillstead-now>n")"));
  }

  /// A start whose log is where the home directory says.
  [[nodiscard]] HookStart startingAtHome() const {
    HookStart start = starting(harness("codex"), "rules");
    start.environment.erase("QUILLSTEAD_HOOK_LOG");
    return start;
  }

  static void expectQuietRun(const HookStart& start) {
    const HookEnd end = runHook(start, R"({"prompt":"x"})");
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_THAT(end.output, ::testing::HasSubstr("user-rules"));
  }
};

TEST_F(Telemetry, IsOneLineForEverySlotOfEveryHarness) {
  const std::vector<std::array<std::string, 3>> table{
      {"", "card=1 rules=1 shortcut=1 cards=1 now=1", "parse rules cards compose write"},
      {"rules", "slot=rules card=1 rules=1", "parse rules compose write"},
      {"index", "slot=index card=1 rules=1 index=1", "parse rules compose write"},
      {"recall", "slot=recall card=1 rules=1 shortcut=1 cards=1 now=1",
       "parse rules cards compose write"},
  };
  for (const Harness& harness : harnesses()) {
    for (const auto& [slot, trail, stages] : table) {
      SCOPED_TRACE(harness.name + " " + slot);
      forgetLog();
      run(harness, slot, harness.payload({}));
      const TelemetryRecord record = onlyRecord();
      EXPECT_EQ(record.trail, trail);
      EXPECT_EQ(record.stageNames(), stages);
    }
  }
}

TEST_F(Telemetry, TellsTheTimeInUniversalTimeWhateverTheLocale) {
  for (const std::string zone : {"", "Asia/Tokyo", "XXX+11:30", "America/St_Johns", "nonsense"}) {
    for (const std::string locale : {"C", "de_CH.UTF-8", "ar_EG.UTF-8", "th_TH.UTF-8"}) {
      forgetLog();
      HookStart start = starting(harness("codex"), "rules");
      start.environment["TZ"] = zone;
      start.environment["LC_ALL"] = locale;
      start.environment["LANG"] = locale;
      const std::int64_t before = wallClock();
      runHook(start, "{}");
      const std::int64_t stamped = millisecondsOf(onlyRecord().timestamp);
      EXPECT_GE(stamped, before);
      EXPECT_LE(stamped, wallClock());
    }
  }
}

TEST_F(Telemetry, GivesEachStageItsTime) {
  server.set(rulesTool, "delay", 300);
  server.set(memoryTool, "delay", 200);
  const HookStart start = starting(harness("codex"), "recall");
  HookRun run(start);
  run.feed(R"({"prompt":)");
  std::this_thread::sleep_for(
      std::chrono::milliseconds(600));  // a busy machine starts the clock late
  run.feed(R"("x"})");
  run.finish();
  const TelemetryRecord record = onlyRecord();
  EXPECT_GE(*record.stage("parse"), 200);
  EXPECT_GE(*record.stage("rules"), 300);
  EXPECT_GE(*record.stage("cards"), 200);
  EXPECT_LT(*record.stage("compose"), 200);
  EXPECT_LT(*record.stage("write"), 200);
  EXPECT_GE(record.totalMilliseconds, 700);
  EXPECT_GE(record.residual, 0);
  EXPECT_LT(record.residual, 500);
}

TEST_F(Telemetry, IsAppendedToWhatTheLogHolds) {
  writeFile(workspace.path("hook.log"), "an earlier line\n");
  for (int time = 0; time < 3; ++time) run(harness("codex"), "rules", "{}");
  const auto lines = logLines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0], "an earlier line");
  for (std::size_t line = 1; line < lines.size(); ++line) EXPECT_TRUE(telemetryRecord(lines[line]));
}

TEST_F(Telemetry, IsWrittenToANewFileThatOthersMayRead) {
  const std::vector<std::pair<mode_t, mode_t>> table{{0, 0644}, {022, 0644}, {077, 0600}};
  for (const auto& [mask, mode] : table) {
    fs::remove(workspace.path("hook.log"));
    const mode_t before = umask(mask);
    run(harness("codex"), "rules", "{}");
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat(workspace.path("hook.log").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, mode);
  }
}

TEST_F(Telemetry, IsSwitchedOffByAnEmptyPath) {
  fs::create_directories(workspace.path("Library/Logs"));
  HookStart start = starting(harness("codex"), "rules");
  start.environment["QUILLSTEAD_HOOK_LOG"] = "";
  start.directory = workspace.path("Library/Logs");
  expectQuietRun(start);
  EXPECT_TRUE(fs::is_empty(workspace.path("Library/Logs")));
}

TEST_F(Telemetry, IsLostWithoutAWordWhenTheLogCannotBeWritten) {
  writeFile(workspace.path("file"), "");
  for (const std::string& path :
       {workspace.path("missing/hook.log"), workspace.path(), workspace.path("file/hook.log"),
        workspace.path(std::string(300, 'n')), std::string("/dev/full")}) {
    HookStart start = starting(harness("codex"), "rules");
    start.environment["QUILLSTEAD_HOOK_LOG"] = path;
    expectQuietRun(start);
  }
  EXPECT_FALSE(fs::exists(workspace.path("missing")));
}

TEST_F(Telemetry, GoesToThePathAsItIsGiven) {
  fs::create_directories(workspace.path("sub dir"));
  HookStart start = starting(harness("codex"), "rules");
  start.environment["QUILLSTEAD_HOOK_LOG"] = "sub dir/../sub dir/~.log";
  start.directory = workspace.path();
  expectQuietRun(start);
  EXPECT_TRUE(telemetryRecord(piecesOf(contentOf(workspace.path("sub dir/~.log")), '\n').at(0)));
}

TEST_F(Telemetry, GoesToTheLogsOfTheHomeDirectoryByDefault) {
  fs::create_directories(workspace.path("home/Library/Logs"));
  HookStart start = startingAtHome();
  for (const std::string& home : {workspace.path("home"), workspace.path("home/")}) {
    start.environment["HOME"] = home;
    expectQuietRun(start);
  }
  const auto lines =
      piecesOf(contentOf(workspace.path("home/Library/Logs/quillstead-hook.log")), '\n');
  EXPECT_EQ(lines.size(), 2U);
}

TEST_F(Telemetry, CreatesNoDirectoriesInTheHomeDirectory) {
  fs::create_directories(workspace.path("home"));
  HookStart start = startingAtHome();
  start.environment["HOME"] = workspace.path("home");
  expectQuietRun(start);
  EXPECT_TRUE(fs::is_empty(workspace.path("home")));
}

TEST_F(Telemetry, GoesToTheRootWhenTheHomeDirectoryIsEmpty) {
  if (fs::exists("/Library/Logs")) GTEST_SKIP() << "would write to /Library/Logs";
  fs::create_directories(workspace.path("Library/Logs"));
  HookStart start = startingAtHome();
  start.environment["HOME"] = "";
  start.directory = workspace.path();
  expectQuietRun(start);
  EXPECT_TRUE(fs::is_empty(workspace.path("Library/Logs")));
}

TEST_F(Telemetry, GoesToTheHomeDirectoryOfTheUserDatabaseWithoutHOME) {
#if !defined(__linux__)
  GTEST_SKIP() << "needs a user database of the test's own, and a hook that runs in a bare root "
                  "directory";
#endif
  if (isSanitized) GTEST_SKIP() << "a sanitized hook does not run in a bare root directory";
  if (geteuid() != 0) GTEST_SKIP() << "only root may change the root directory";
  for (const std::string directory : {"etc", "home/tester/Library/Logs", "elsewhere"}) {
    fs::create_directories(workspace.path("root/" + directory));
  }
  writeFile(workspace.path("root/etc/passwd"),
            "other:x:4242:4242::/elsewhere:/bin/sh\ntester:x:0:0::/home/tester:/bin/sh\n");
  fs::copy_file(hookExecutable(), workspace.path("root/hook"));
  HookStart start = startingAtHome();
  start.executable = "/hook";
  start.root = workspace.path("root");
  start.environment.erase("HOME");
  EXPECT_EQ(runHook(start, "{}").output, harness("codex").silentOutput());
  const auto lines = piecesOf(
      contentOf(workspace.path("root/home/tester/Library/Logs/quillstead-hook.log")), '\n');
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(telemetryRecord(lines[0])->trail, "slot=rules rules=MISS:no-envelope");
}

TEST_F(Telemetry, OfManyHooksAtOnceDoesNotMix) {
  constexpr std::size_t count = 24;
  std::deque<HookRun> runs;
  for (std::size_t number = 0; number < count; ++number) {
    const Harness& one = harnesses()[number % harnesses().size()];
    runs.emplace_back(starting(one, promptSlots[number % promptSlots.size()]));
  }
  for (HookRun& run : runs) run.feed(R"({"prompt":"x"})");
  for (HookRun& run : runs) run.closeInput();
  for (HookRun& run : runs) EXPECT_EQ(run.finish().status, 0);
  const auto lines = logLines();
  EXPECT_EQ(lines.size(), count);
  for (const std::string& line : lines) {
    const auto record = telemetryRecord(line);
    ASSERT_TRUE(record) << line;
    EXPECT_TRUE(record->addsUp()) << line;
  }
}

TEST_F(Telemetry, ComesAfterTheAnswer) {
  // An answer that a pipe does not hold is not written before somebody reads it.
  const std::string rules = rulesBlock(std::string(1'000'000, 'r'));
  server.answer(rulesTool, rules, rulesMeta);
  HookRun run(starting(harness("opencode"), "rules"));
  run.feed("{}");
  run.closeInput();
  run.awaitAnswer();
  EXPECT_FALSE(fs::exists(workspace.path("hook.log")));
  EXPECT_THAT(run.finish().output, isAnswer(harness("opencode").envelope(rules)));
  EXPECT_EQ(onlyRecord().trail, "slot=rules card=miss rules=1");
}

TEST_F(Telemetry, IsLostWhenItsLogHasNoRoom) {
  const FullPipe log(workspace.path("hook.log"));
  const HookEnd end = run(harness("codex"), "rules", "{}");
  EXPECT_EQ(end.status, 0);
  EXPECT_THAT(end.output, isAnswer(harness("codex").envelope(rulesBlock("R"))));
  EXPECT_EQ(log.drain().find_first_not_of('.'), std::string::npos);
}

TEST_F(Telemetry, IsLostWhenItsLogIsAsLongAsFilesMayBe) {
  const std::string before(100, '.');
  writeFile(workspace.path("hook.log"), before);
  HookStart start = starting(harness("codex"), "rules");
  start.environment["QUILLSTEAD_MCP_BIN"] = "/nonexistent/server";
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  rlimit least = old;
  least.rlim_cur = before.size();
  setrlimit(RLIMIT_FSIZE, &least);
  const HookEnd end = runHook(start, "{}");
  setrlimit(RLIMIT_FSIZE, &old);
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.output, harness("codex").silentOutput());
  EXPECT_EQ(contentOf(workspace.path("hook.log")), before);
}

}  // namespace
}  // namespace quillstead
