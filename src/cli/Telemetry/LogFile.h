#pragma once

#include "cli/Context.h"
#include "support/OS/Descriptor.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// Where the hook's log is looked for.
struct LogPlace {
  std::vector<std::string> candidates;  ///< the first one that exists counts
  bool isOff = false;                   ///< the environment switches the log off

  /// QUILLSTEAD_HOOK_LOG; else the log that install set up and the hook's default. `named`: the log
  /// that Claude Code's settings name, which install uses for all harnesses; absent: none.
  static LogPlace find(const Context& context, const std::optional<std::string>& named);

  /// The log that Claude Code's settings name; absent when they name none or cannot be read.
  static std::optional<std::string> named(const Places& places);
};

}  // namespace quillstead::cli

/// Reads a log line by line, with little memory.
namespace quillstead::cli::LogFile {

/// The hook writes no longer line. Longer ones are cut to this many bytes.
inline constexpr std::size_t longestLine = 65'536;

/// Opens a regular file for reading, without waiting. Not open when it does not exist.
OS::Descriptor open(const std::string& path);

/// Splits bytes, as they are read, into lines and passes each on.
class Lines {
 public:
  /// `isWhole`: the line has its line end and is not cut.
  using Visit = std::function<void(std::string_view line, bool isWhole)>;

  explicit Lines(Visit visit) : visit_(std::move(visit)) {}

  void add(std::string_view bytes);

  /// Passes on what follows the last line end, if anything.
  void finish();

 private:
  void keep(std::string_view part);

  Visit visit_;
  std::string begun_;
  bool isTooLong_ = false;
};

/// Passes on all lines of an open file, from its current position. False when it could not be read
/// to the end.
bool forEachLine(const OS::Descriptor& file, Lines& lines);

}  // namespace quillstead::cli::LogFile
