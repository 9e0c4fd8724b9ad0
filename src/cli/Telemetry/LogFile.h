#pragma once

#include "support/OS/Descriptor.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

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
