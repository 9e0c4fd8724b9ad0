#pragma once

#include "support/OS/Descriptor.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Reading a log, line by line, in little memory.
namespace quillstead::cli::LogFile {

/// A longer line is none of the hook's; it is handed over cut at this many bytes.
inline constexpr std::size_t longestLine = 65'536;

/// Opens a regular file for reading, without waiting; not open when there is none at the path.
OS::Descriptor open(const std::string& path);

/// Takes the bytes of a file as they are read, and hands over each line.
class Lines {
 public:
  /// `isWhole`: the line came with its end, and is not cut.
  using Visit = std::function<void(std::string_view line, bool isWhole)>;

  explicit Lines(Visit visit) : visit_(std::move(visit)) {}

  void add(std::string_view bytes);

  /// Hands over what came after the last line's end, when there is something.
  void finish();

 private:
  void keep(std::string_view part);

  Visit visit_;
  std::string begun_;
  bool isTooLong_ = false;
};

/// Hands over all lines of an open file, from where it is. False when it could not be read to its
/// end.
bool forEachLine(const OS::Descriptor& file, Lines& lines);

}  // namespace quillstead::cli::LogFile
