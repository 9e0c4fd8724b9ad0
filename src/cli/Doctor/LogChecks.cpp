#include "cli/Doctor/LogChecks.h"

#include "cli/Telemetry/LogFile.h"
#include "cli/Telemetry/LogLine.h"
#include "cli/Wording.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <deque>

namespace quillstead::cli::LogChecks {

namespace {

constexpr std::size_t mostLines = 200;

/// The log that the hooks write.
std::string pathOf(const LogPlace& place) {
  for (const std::string& path : place.candidates) {
    if (access(path.c_str(), F_OK) == 0) return path;
  }
  return place.candidates.empty() ? std::string() : place.candidates.front();
}

/// The last lines of a log, whatever its size.
std::deque<std::string> lastLines(const OS::Descriptor& log) {
  constexpr off_t enough = 262'144;  // bytes
  struct stat status {};
  if (fstat(log.number(), &status) == 0 && status.st_size > enough) {
    lseek(log.number(), status.st_size - enough, SEEK_SET);
  }
  std::deque<std::string> kept;
  LogFile::Lines lines([&kept](std::string_view line, bool isWhole) {
    if (!isWhole) return;
    kept.emplace_back(line);
    if (kept.size() > mostLines) kept.pop_front();
  });
  LogFile::forEachLine(log, lines);
  return kept;
}

/// What the lines say.
struct Recent {
  std::int64_t prompts = 0;
  std::int64_t timeouts = 0;
  std::int64_t refusals = 0;
  std::int64_t overBudget = 0;
  std::int64_t trimmed = 0;

  void add(const LogLine& line) {
    ++prompts;
    bool isLate = false;
    bool isRefused = false;
    bool isOver = false;
    for (const std::string_view field : line.fields) {
      if (!LogLine::isMiss(field)) continue;
      isLate = isLate || field.ends_with(":timeout");
      isOver = isOver || field.ends_with(":over-budget");
      isRefused = isRefused || field.ends_with(":no-envelope") || field.ends_with(":no-kind") ||
                  field.ends_with(":declined");
    }
    timeouts += isLate ? 1 : 0;
    refusals += isRefused ? 1 : 0;
    overBudget += isOver ? 1 : 0;
    trimmed += line.count("trimmed") > 0 ? 1 : 0;
  }
};

}  // namespace

Check file(const Context& context, const std::optional<std::string>& named) {
  const LogPlace place = LogPlace::find(context, named);
  Findings findings;
  if (place.isOff) {
    return skipped("log.file", "the log is switched off: QUILLSTEAD_HOOK_LOG is set and empty");
  }
  const std::string path = pathOf(place);
  const std::string directory = path.substr(0, path.rfind('/') + 1);
  struct stat status {};
  const bool isThere = stat(path.c_str(), &status) == 0;
  if (isThere && !S_ISREG(status.st_mode)) {
    findings.warn(path + " is no file, so nothing is logged", "remove it");
  } else if (isThere && access(path.c_str(), W_OK) != 0) {
    const bool isOurs = status.st_uid == geteuid();
    findings.warn(path + " cannot be written, so nothing is logged",
                  isOurs ? "chmod u+w " + path : "it belongs to another user: remove it");
  } else if (!isThere && access(directory.empty() ? "." : directory.c_str(), W_OK) != 0) {
    findings.warn(path + " cannot be created, so nothing is logged", "mkdir -p " + directory);
  }
  return findings.check("log.file", isThere ? path + ": " + Wording::counted(status.st_size, "byte")
                                            : path + ": will be created at the first prompt");
}

Check recent(const Context& context, const std::optional<std::string>& named) {
  const LogPlace place = LogPlace::find(context, named);
  const OS::Descriptor log = LogFile::open(pathOf(place));
  Recent recent;
  LogLine line;
  if (log.isOpen()) {
    for (const std::string& text : lastLines(log)) {
      if (line.read(text)) recent.add(line);
    }
  }
  if (recent.prompts == 0) return skipped("log.recent", "no prompts were logged yet");

  struct Loss {
    std::int64_t prompts;
    const char* what;
    const char* fix;
  };
  Findings findings;
  for (const auto& [prompts, what, fix] :
       {Loss{recent.timeouts, " timed out",
             "quillstead log --since 1d shows which stage takes long"},
        Loss{recent.refusals, " got no answer from the server", "see server.start above"},
        Loss{recent.overBudget, " had something left out for the budget", "shorten rules.md"},
        Loss{recent.trimmed, " had cards cut for the budget", "shorten rules.md, or the cards"}}) {
    if (prompts == 0) continue;
    findings.warn(std::to_string(prompts) + " of the last " +
                      Wording::counted(recent.prompts, "prompt") + what,
                  fix);
  }
  return findings.check("log.recent", "nothing was missing in the last " +
                                          Wording::counted(recent.prompts, "prompt"));
}

}  // namespace quillstead::cli::LogChecks
