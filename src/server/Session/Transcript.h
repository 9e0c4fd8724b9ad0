#pragma once

#include <cstdint>
#include <string>

/// What a harness writes of a session as it goes, one JSON object a line.
namespace quillstead::server::Transcript {

/// What happened to the transcript since it was looked at last.
struct Change {
  std::uint64_t read;  ///< how far it has been looked through now, in bytes
  bool newContext;     ///< what was shown before is no longer before the model
};

/// Looks through what was added behind `read` bytes for the mark of a compaction. A transcript that
/// is shorter than that, or grew by more than can be looked through, counts as a new context. One
/// that is not there or no plain file has not changed.
Change changeSince(const std::string& path, std::uint64_t read);

/// How long it is now, 0 when it is not there.
std::uint64_t length(const std::string& path);

}  // namespace quillstead::server::Transcript
