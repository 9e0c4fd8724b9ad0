#include "support/OS/Spawn.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace quillstead::OS {
namespace {

/// Has the kernel answer one system call as one that does not know it. False when it refuses.
bool forgetSystemCall(unsigned int call) {
  std::array<sock_filter, 4> instructions{{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  const sock_fprog program{.len = instructions.size(), .filter = instructions.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST(Spawn, LetsAChildKeepItsStandardStreamsOnlyWhereTheKernelCannotCloseMany) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    // More than one reading of the directory tells.
    for (int i = 0; i < 400; ++i) [[maybe_unused]] const int inheritable = dup(STDERR_FILENO);
    const StandardStreams streams{
        .input = dup(STDIN_FILENO), .output = dup(STDOUT_FILENO), .error = dup(STDERR_FILENO)};
    if (!forgetSystemCall(SYS_close_range)) return;
    const std::optional<pid_t> process = spawn(unit::child("ListsDescriptors"), streams);
    if (process) waitpid(*process, nullptr, 0);
  });
  EXPECT_EQ(run.standardOutput, "0 1 2 ");
}

}  // namespace
}  // namespace quillstead::OS
