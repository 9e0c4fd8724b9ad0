#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace quillstead::OS {

/// The descriptors that become a child's standard streams. Each is above 2, so that moving one does
/// not overwrite another.
struct StandardStreams {
  int input;
  int output;
  int error;
};

/// Starts a program as a child of ours. It gets no arguments but its own path, our environment and
/// directory, and the three streams; no other descriptor, not even one that we inherited. No signal
/// is blocked, and every standard one has its default action. A relative path starts at the current
/// directory.
///
/// Absent when the program does not exist or cannot be executed, or no process can be created.
std::optional<pid_t> spawn(const std::string& executable, const StandardStreams& streams);

}  // namespace quillstead::OS
