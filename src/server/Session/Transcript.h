#pragma once

#include <cstdint>
#include <string>

/// A harness's transcript of a session: one JSON object per line.
namespace quillstead::server::Transcript {

/// What changed in the transcript since it was last read.
struct Change {
  std::uint64_t read;  ///< how far it has been read, in bytes
  bool newContext;     ///< the model no longer sees what it was shown before
};

/// Searches what was added after `read` bytes for the mark of a compaction. A transcript that
/// became shorter, or grew by more than can be searched, counts as a new context. A missing one, or
/// one that is not a regular file, counts as unchanged.
Change changeSince(const std::string& path, std::uint64_t read);

/// Its size in bytes; 0 when it does not exist.
std::uint64_t length(const std::string& path);

}  // namespace quillstead::server::Transcript
