#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <variant>

/// Reads and replaces a settings file; a replacement is complete or does not happen.
namespace quillstead::cli::ConfigFile {

/// The file at a path.
struct Content {
  std::string path;                  ///< the file's path, links followed
  std::optional<std::string> bytes;  ///< absent: there is no file
  struct stat status;                ///< of the file, when there is one

  /// Whether the file is there and may not be written to by anyone.
  [[nodiscard]] bool isReadOnly() const { return bytes && (status.st_mode & 0222U) == 0; }
};

/// Why a file cannot be read or changed.
struct Problem {
  std::string what;  ///< "cannot be written: Permission denied"
};

/// Reads the file. One that is no file, or that is larger than a settings file can be is a problem.
std::variant<Content, Problem> read(const std::string& path);

/// What the file holds; absent when there is none, or it cannot be read.
std::optional<std::string> textOf(const std::string& path);

enum class Written {
  done,
  changedMeanwhile,  ///< the file changed since it was read; nothing was written
};

/// Replaces the content by `bytes` (absent: removes the file), if the file has not changed since it
/// was read. The new file is written beside the old one with the same mode and owner, synced, and
/// renamed, so that readers see the old or the new one. Missing directories are created for the
/// user only.
std::variant<Written, Problem> replace(const Content& before,
                                       const std::optional<std::string>& bytes);

/// Copies what was read into `directory`, readable by the user only, under a name made from the
/// file's path. Returns the copy's path. Writes nothing when an earlier copy is the same.
std::variant<std::string, Problem> keepCopy(const Content& content, const std::string& directory);

/// Whether such a copy of the file exists, with any content.
bool hasCopy(const Content& content, const std::string& directory);

/// Removes incomplete files that killed runs left beside the file.
void removeLeftovers(const std::string& path);

}  // namespace quillstead::cli::ConfigFile
