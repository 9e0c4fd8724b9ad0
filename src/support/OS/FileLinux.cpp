#include "support/OS/File.h"
#include "support/Text/Hash.h"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace quillstead::OS {

namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

/// Local file systems that update a directory's times with each change. Others may be changed from
/// another machine, and show it late.
bool keepsTimes(const Descriptor& directory) {
  constexpr long xfs = 0x58465342;
  constexpr long zfs = 0x2FC12FC1;
  constexpr std::array<long, 7> known{EXT4_SUPER_MAGIC,
                                      BTRFS_SUPER_MAGIC,
                                      TMPFS_MAGIC,
                                      F2FS_SUPER_MAGIC,
                                      OVERLAYFS_SUPER_MAGIC,
                                      xfs,
                                      zfs};
  struct statfs status {};
  if (fstatfs(directory.number(), &status) != 0) return false;
  return std::find(known.begin(), known.end(), status.f_type) != known.end();
}

nanoseconds sinceEpoch(const timespec& time) {
  return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

/// The clock of these file systems ticks every ten milliseconds at most.
bool isSettled(nanoseconds changed) {
  const nanoseconds age = std::chrono::system_clock::now().time_since_epoch() - changed;
  return age >= 50ms;
}

}  // namespace

FileStamp fileStamp(const struct stat& status) {
  constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
  return {.size = status.st_size,
          .modified = status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec};
}

std::optional<std::uint64_t> namesStamp(const Descriptor& directory) {
  struct stat status {};
  if (fstat(directory.number(), &status) != 0 || !keepsTimes(directory)) return std::nullopt;
  // Anyone can set the modification time back, but not the change time.
  const nanoseconds changed = sinceEpoch(status.st_ctim);
  if (!isSettled(changed)) return std::nullopt;
  std::uint64_t stamp = 0;
  for (const auto part : {static_cast<std::uint64_t>(status.st_dev), std::uint64_t{status.st_ino},
                          static_cast<std::uint64_t>(changed.count())}) {
    stamp = Text::mixed(stamp + part + 1);
  }
  return stamp;
}

}  // namespace quillstead::OS
