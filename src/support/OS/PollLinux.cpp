#include "support/OS/Poll.h"

#include <ctime>

namespace quillstead::OS {

void waitForEvents(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost) {
  timespec limit{};
  if (atMost) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*atMost);
    limit.tv_sec = seconds.count();
    limit.tv_nsec = (*atMost - seconds).count();
  }
  if (ppoll(descriptors.data(), descriptors.size(), atMost ? &limit : nullptr, nullptr) > 0) return;
  for (pollfd& descriptor : descriptors) descriptor.revents = 0;
}

}  // namespace quillstead::OS
