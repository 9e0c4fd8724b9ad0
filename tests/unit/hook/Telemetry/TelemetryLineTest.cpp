#include "hook/Telemetry/TelemetryLine.h"
#include "support/OS/Paths.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <clocale>
#include <ctime>
#include <filesystem>
#include <map>
#include <sstream>

namespace quillstead::hook::TelemetryLine {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;

std::chrono::system_clock::time_point at(std::chrono::year_month_day day,
                                         std::chrono::nanoseconds time) {
  return std::chrono::time_point_cast<std::chrono::system_clock::duration>(sys_days(day) + time);
}

std::string pathIn(std::initializer_list<std::string> entries) {
  return path(unit::EnvironmentOf(entries));
}

TEST(TelemetryLine, LogsWhereTheVariableSays) {
  EXPECT_EQ(pathIn({"QUILLSTEAD_HOOK_LOG=/tmp/x.log", "HOME=/home/u"}), "/tmp/x.log");
  EXPECT_EQ(pathIn({"QUILLSTEAD_HOOK_LOG= relative/x ", "HOME=/home/u"}), " relative/x ");
  EXPECT_EQ(pathIn({"QUILLSTEAD_HOOK_LOG=", "HOME=/home/u"}), "");
}

TEST(TelemetryLine, LogsInTheHomeDirectoryOtherwise) {
  EXPECT_EQ(pathIn({"HOME=/home/u"}), "/home/u/Library/Logs/quillstead-hook.log");
  EXPECT_EQ(pathIn({"HOME=/home/u/"}), "/home/u//Library/Logs/quillstead-hook.log");
  EXPECT_EQ(pathIn({"HOME="}), "/Library/Logs/quillstead-hook.log");
  EXPECT_EQ(pathIn({}), OS::homeDirectory() + "/Library/Logs/quillstead-hook.log");
}

TEST(TelemetryLine, StampsInUTCWithMilliseconds) {
  using namespace std::chrono;
  struct Case {
    system_clock::time_point now;
    const char* timestamp;
  };
  for (const Case& one : {
           Case{at(2026y / 11 / 16, 3h + 38min + 33s + 123ms), "2026-11-16T03:38:33.123+00:00"},
           Case{at(1970y / 1 / 1, 0ns), "1970-01-01T00:00:00.000+00:00"},
           Case{at(2024y / 2 / 29, 23h + 59min + 59s + 999'999us), "2024-02-29T23:59:59.999+00:00"},
           Case{at(2027y / 1 / 2, 5ms), "2027-01-02T00:00:00.005+00:00"},
           Case{at(2027y / 1 / 2, 50ms), "2027-01-02T00:00:00.050+00:00"},
           Case{at(1969y / 12 / 31, 23h + 59min + 59s + 250ms), "1969-12-31T23:59:59.250+00:00"},
       }) {
    EXPECT_EQ(timestamp(one.now), one.timestamp);
  }
}

TEST(TelemetryLine, StampsTheSameWhateverTheTimeZoneAndLocale) {
  using namespace std::chrono;
  const auto now = at(2026y / 11 / 16, 3h + 38min + 33s + 123ms);
  for (const char* zone : {"Asia/Kathmandu", "America/St_Johns", "XYZ-13:37", "right/UTC", ""}) {
    const unit::ScopedVariable variable("TZ", zone);
    tzset();
    EXPECT_EQ(timestamp(now), "2026-11-16T03:38:33.123+00:00") << zone;
  }
  tzset();
  for (const char* locale :
       {"de_DE.UTF-8", "fa_IR.UTF-8", "ar_EG.UTF-8", "th_TH.UTF-8", "C.UTF-8"}) {
    std::setlocale(LC_ALL, locale);
    EXPECT_EQ(timestamp(now), "2026-11-16T03:38:33.123+00:00") << locale;
    std::setlocale(LC_ALL, "C");
  }
}

TEST(TelemetryLine, IsAppendedToWhatTheLogHolds) {
  const unit::TemporaryDirectory directory;
  unit::writeFile(directory / "log", "earlier\n");
  append("one\n", directory / "log");
  append("two\n", directory / "log");
  append("no line end", directory / "log");
  EXPECT_EQ(unit::contentsOf(directory / "log"), "earlier\none\ntwo\nno line end");
}

TEST(TelemetryLine, CreatesTheLogWithMode0644LessTheMask) {
  const unit::TemporaryDirectory directory;
  for (const auto& [mask, mode] : {std::pair<mode_t, mode_t>{0, 0644}, {022, 0644}, {077, 0600}}) {
    const std::string log = directory / std::to_string(mask);
    const mode_t before = umask(mask);
    append("x\n", log);
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat(log.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, mode);
  }
}

TEST(TelemetryLine, TouchesNoFileWhenThePathIsEmpty) {
  const unit::TemporaryDirectory directory;
  const unit::ScopedDirectory here(directory.path());
  append("x\n", "");
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST(TelemetryLine, WritesNothingAndSaysNothingWhereTheLogCannotBe) {
  const unit::TemporaryDirectory directory;
  const unit::Captured error(STDERR_FILENO);
  append("x\n", directory / "missing/log");
  append("x\n", directory.path());
  EXPECT_EQ(error.text(), "");
  EXPECT_TRUE(std::filesystem::is_empty(directory.path())) << "no directory is created";
}

TEST(TelemetryLine, DoesNotWaitForAReaderOfAFIFO) {
  const unit::TemporaryDirectory directory;
  const std::string fifo = directory / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const unit::ForkedRun run = unit::inForkedProcess([&] {
    append("x\n", fifo);
    unit::print("went on");
  });
  EXPECT_EQ(run.standardOutput, "went on");
}

TEST(TelemetryLine, LeavesNoDescriptorOpen) {
  const unit::TemporaryDirectory directory;
  const auto before = unit::openDescriptors();
  append("x\n", directory / "log");
  EXPECT_EQ(unit::openDescriptors(), before);
}

TEST(TelemetryLine, KeepsTheLinesOfTwentyProcessesWhole) {
  constexpr int processes = 20;
  constexpr int lines = 50;
  const unit::TemporaryDirectory directory;
  const std::string log = directory / "log";
  for (int number = 0; number < processes; ++number) {
    if (fork() == 0) {
      const std::string line(static_cast<std::size_t>(150 + number),
                             static_cast<char>('a' + number));
      for (int i = 0; i < lines; ++i) append(line + "\n", log);
      _exit(0);
    }
  }
  for (int number = 0; number < processes; ++number) wait(nullptr);

  std::map<std::string, int> counts;
  std::istringstream stream(unit::contentsOf(log));
  for (std::string line; std::getline(stream, line);) ++counts[line];
  EXPECT_EQ(counts.size(), static_cast<std::size_t>(processes));
  for (const auto& [line, count] : counts) {
    EXPECT_EQ(count, lines);
    EXPECT_EQ(line.size(), static_cast<std::size_t>(150 + line[0] - 'a'));
    EXPECT_EQ(line.find_first_not_of(line[0]), std::string::npos);
  }
}

}  // namespace
}  // namespace quillstead::hook::TelemetryLine
