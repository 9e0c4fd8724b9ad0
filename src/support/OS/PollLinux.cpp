#include "support/OS/Poll.h"

#include <ctime>

namespace quillstead::OS {

int pollOnce(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost) {
  timespec limit{};
  if (atMost) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*atMost);
    limit.tv_sec = seconds.count();
    limit.tv_nsec = (*atMost - seconds).count();
  }
  return ppoll(descriptors.data(), descriptors.size(), atMost ? &limit : nullptr, nullptr);
}

}  // namespace quillstead::OS
