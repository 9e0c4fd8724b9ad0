#include "support/OS/File.h"

namespace quillstead::OS {

FileStamp fileStamp(const struct stat& status) {
  constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
  return {
      .size = status.st_size,
      .modified = status.st_mtimespec.tv_sec * nanosecondsPerSecond + status.st_mtimespec.tv_nsec};
}

std::optional<std::uint64_t> namesStamp(const Descriptor&) { return std::nullopt; }

}  // namespace quillstead::OS
