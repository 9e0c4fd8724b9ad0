#include "support/OS/Poll.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <thread>

namespace quillstead::OS {

void waitForEvents(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost) {
  int limit = -1;
  if (atMost) {
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(*atMost).count();
    limit = static_cast<int>(std::min<long long>(milliseconds, INT_MAX));
  }
  const int ready = poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), limit);
  if (ready > 0) return;
  const bool isBlind = ready < 0 && errno != EINTR;
  if (isBlind) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  for (pollfd& entry : descriptors) {
    entry.revents = 0;
    if (isBlind && entry.fd >= 0) entry.revents = entry.events;
  }
}

}  // namespace quillstead::OS
