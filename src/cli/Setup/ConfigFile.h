#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <variant>

/// A user's settings file, replaced whole or not at all.
namespace quillstead::cli::ConfigFile {

/// What is at a path.
struct Content {
  std::string path;                  ///< where the file lies, links followed
  std::optional<std::string> bytes;  ///< absent: there is no file
  struct stat status;                ///< of the file, when there is one

  /// Whether the file is there and may not be written to by anyone.
  [[nodiscard]] bool isReadOnly() const { return bytes && (status.st_mode & 0222U) == 0; }
};

/// Why a file cannot be dealt with.
struct Problem {
  std::string what;  ///< "cannot be written: Permission denied"
};

/// Reads the file. One that is no file, or that is larger than a settings file can be is a problem.
std::variant<Content, Problem> read(const std::string& path);

/// What the file holds; absent when there is none, or it cannot be read.
std::optional<std::string> textOf(const std::string& path);

enum class Written {
  done,
  changedMeanwhile,  ///< the file is not what it was; nothing was written
};

/// Makes the file hold `bytes` (absent: makes it go) when it still is what was read. The new file
/// is written beside the old one, with its mode and owner, handed to the disk and renamed: whoever
/// looks sees the old one or the new one. Directories that are missing are made, for the user
/// alone.
std::variant<Written, Problem> replace(const Content& before,
                                       const std::optional<std::string>& bytes);

/// Keeps a copy of what was read in `directory`, for the user alone, under a name made of the
/// file's path. Gives the copy's path; nothing is written when an earlier copy holds the same.
std::variant<std::string, Problem> keepCopy(const Content& content, const std::string& directory);

/// Whether there is such a copy of the file, whatever it holds.
bool hasCopy(const Content& content, const std::string& directory);

/// Removes what runs that were killed left half written beside the file.
void removeLeftovers(const std::string& path);

}  // namespace quillstead::cli::ConfigFile
