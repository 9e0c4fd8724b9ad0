#include "cli/Telemetry/LogFollow.h"

#include "cli/Telemetry/LogFile.h"
#include "cli/Wording.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace quillstead::cli::LogFollow {

namespace {

constexpr int pause = 200;  ///< milliseconds between two looks

/// Waits between two reads. False when nobody reads the output any more.
bool waitWhileHeard(const Console& console) {
  poll(nullptr, 0, pause);
  return console.isHeard();
}

/// True when the file at the path is not the open one, or was truncated.
bool isReplaced(const OS::Descriptor& log, const std::string& path) {
  struct stat now {};
  struct stat there {};
  if (fstat(log.number(), &now) != 0 || stat(path.c_str(), &there) != 0) return false;
  return now.st_ino != there.st_ino || now.st_dev != there.st_dev ||
         now.st_size < lseek(log.number(), 0, SEEK_CUR);
}

std::string timeOfDay(LogLine::Time when) {
  const std::time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(when));
  std::tm local{};
  localtime_r(&seconds, &local);
  std::array<char, 16> text{};
  const std::size_t size = std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
  return {text.data(), size};
}

void addWords(std::string& text, const std::string& words) {
  text.append(text.empty() ? "" : ", ").append(words);
}

/// What was received, and what was missing.
std::string happened(const LogLine& line, const Console& console) {
  std::string came;
  if (line.value("rules") == "1") addWords(came, "rules");
  if (line.value("index") == "1") addWords(came, "index");
  if (line.value("shortcut") == "1") addWords(came, "shortcut");
  if (line.count("cards") > 0) addWords(came, Wording::counted(line.count("cards"), "card"));
  if (line.count("trimmed") > 0) addWords(came, std::to_string(line.count("trimmed")) + " cut");
  if (line.value("now") == "1") addWords(came, "a note on what just ended");
  if (came.empty()) came = "nothing";
  for (const std::string_view field : line.fields) {
    if (LogLine::isMiss(field)) addWords(came, console.coloured(Colour::red, field));
  }
  return came;
}

}  // namespace

std::string readable(const LogLine& line, const Console& console) {
  constexpr std::size_t slotWidth = 8;
  constexpr std::size_t timeWidth = 7;
  std::string slot(line.slot.empty() ? "all" : line.slot);
  slot.resize(slotWidth, ' ');
  std::string time = Wording::grouped(line.milliseconds);
  if (time.size() < timeWidth) time.insert(0, timeWidth - time.size(), ' ');
  return console.coloured(Colour::faint, timeOfDay(line.when)) + "  " + slot + time + " ms  " +
         happened(line, console);
}

int run(OS::Descriptor log, const std::string& path, Console& console) {
  LogLine line;
  LogFile::Lines lines([&](std::string_view text, bool /*isWhole*/) {
    const std::string shown =
        line.read(text) ? readable(line, console) : "not the hook's: " + Wording::plain(text);
    console.print(shown + "\n");
  });
  lseek(log.number(), 0, SEEK_END);
  do {
    if (!LogFile::forEachLine(log, lines) || !console.flush()) return EXIT_FAILURE;
    if (isReplaced(log, path)) {
      lines.finish();
      OS::Descriptor next = LogFile::open(path);
      if (next.isOpen()) log = std::move(next);
    }
  } while (waitWhileHeard(console));
  return EXIT_SUCCESS;
}

}  // namespace quillstead::cli::LogFollow
