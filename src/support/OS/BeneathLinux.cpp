#include "support/OS/Beneath.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace quillstead::OS {

namespace {

constexpr int mostAttempts = 16;

}  // namespace

// By its number: the C library may be older than the kernel and lack a function for it.
Descriptor openBeneath(const Descriptor& directory, const std::string& path, int flags) {
  open_how how{};
  how.flags = static_cast<unsigned>(flags | O_CLOEXEC);
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    Descriptor opened(
        static_cast<int>(syscall(SYS_openat2, directory.number(), path.c_str(), &how, sizeof how)));
    if (opened.isOpen()) return opened;
    // A directory was renamed during the call, so that the kernel cannot check "..".
    if (errno == EAGAIN || errno == EINTR) continue;
    // An older kernel lacks the call, and a container may refuse unknown calls.
    if (errno == ENOSYS || errno == EPERM) break;
    return opened;
  }
  return walkBeneath(directory, path, flags);
}

}  // namespace quillstead::OS
