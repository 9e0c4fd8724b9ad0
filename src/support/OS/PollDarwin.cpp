#include "support/OS/Poll.h"

#include <algorithm>
#include <climits>

namespace quillstead::OS {

int pollOnce(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost) {
  int limit = -1;
  if (atMost) {
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(*atMost).count();
    limit = static_cast<int>(std::min<long long>(milliseconds, INT_MAX));
  }
  return poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), limit);
}

}  // namespace quillstead::OS
