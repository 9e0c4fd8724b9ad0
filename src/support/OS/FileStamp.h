#pragma once

#include <sys/stat.h>

#include <cstdint>

namespace quillstead::OS {

/// What tells one state of a file from another without reading it.
struct FileStamp {
  std::int64_t size;      ///< bytes
  std::int64_t modified;  ///< nanoseconds since 1970, as fine as the file system keeps them

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

FileStamp fileStamp(const struct stat& status);

}  // namespace quillstead::OS
