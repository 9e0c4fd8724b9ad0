#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace quillstead::OS {

/// The descriptors that become a child's standard streams. Each is above 2, so that none is in
/// another's way.
struct StandardStreams {
  int input;
  int output;
  int error;
};

/// Starts a program as a child of ours. It gets no arguments but its own path, our environment and
/// directory, the three streams and no other descriptor, not even one that was left open by the
/// process that started us; no signal is blocked, and every standard one does what it does by
/// default. A relative path counts from the current directory.
///
/// Absent when there is no such program, it cannot be executed, or no process is to be had.
std::optional<pid_t> spawn(const std::string& executable, const StandardStreams& streams);

}  // namespace quillstead::OS
