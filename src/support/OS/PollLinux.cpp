#include "support/OS/Poll.h"

#include <cerrno>
#include <ctime>
#include <thread>

namespace quillstead::OS {

void waitForEvents(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost) {
  timespec limit{};
  if (atMost) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*atMost);
    limit.tv_sec = seconds.count();
    limit.tv_nsec = (*atMost - seconds).count();
  }
  const int ready =
      ppoll(descriptors.data(), descriptors.size(), atMost ? &limit : nullptr, nullptr);
  if (ready > 0) return;
  const bool isBlind = ready < 0 && errno != EINTR;
  if (isBlind) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  for (pollfd& entry : descriptors) {
    entry.revents = 0;
    if (isBlind && entry.fd >= 0) entry.revents = entry.events;
  }
}

}  // namespace quillstead::OS
