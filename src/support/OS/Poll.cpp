#include "support/OS/Poll.h"

#include <cerrno>
#include <thread>

namespace quillstead::OS {

void waitForEvents(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost) {
  const int ready = pollOnce(descriptors, atMost);
  if (ready > 0) return;
  const bool isBlind = ready < 0 && errno != EINTR;
  if (isBlind) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  for (pollfd& entry : descriptors) {
    entry.revents = 0;
    if (isBlind && entry.fd >= 0) entry.revents = entry.events;
  }
}

}  // namespace quillstead::OS
