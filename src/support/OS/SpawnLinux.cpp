#include "support/OS/Environment.h"
#include "support/OS/Spawn.h"

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>

// As the C library's spawn does it, but that one also maps a stack for each child, asks for the
// limit of descriptors with each action, and sets every real-time signal: thirty microseconds more
// a child, a part in thirty of a whole run.
namespace quillstead::OS {

namespace {

constexpr int lastStandardSignal = SIGSYS;

/// What a child is to become; it shares our memory until then.
struct Program {
  const char* path;
  char* const* environment;
  StandardStreams streams;
  bool hasBegun;
};

/// Turns the child into its program. Makes system calls only; returns its exit status when one of
/// them fails.
[[gnu::no_sanitize_address]]  // would mark the child's stack, which is not there to be unmarked
int becomeProgram(void* argument) {
  Program& program = *static_cast<Program*>(argument);
  struct sigaction byDefault {};
  byDefault.sa_handler = SIG_DFL;
  for (int signal = 1; signal <= lastStandardSignal; ++signal) {
    sigaction(signal, &byDefault, nullptr);
  }
  sigset_t none{};
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);

  const auto& [input, output, error] = program.streams;
  if (dup2(input, STDIN_FILENO) >= 0 && dup2(output, STDOUT_FILENO) >= 0 &&
      dup2(error, STDERR_FILENO) >= 0) {
    closefrom(STDERR_FILENO + 1);
    const std::array<char*, 2> arguments{const_cast<char*>(program.path), nullptr};
    execve(program.path, arguments.data(), program.environment);
  }
  program.hasBegun = false;
  return 1;
}

void awaitEnd(pid_t process) {
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

std::optional<pid_t> spawn(const std::string& executable, const StandardStreams& streams) {
  Program program{
      .path = executable.c_str(),
      .environment = const_cast<char* const*>(Environment::ofProcess().entries()),
      .streams = streams,
      .hasBegun = true,
  };
  alignas(std::max_align_t) std::array<std::byte, 16'384> stack;

  sigset_t all{};
  sigset_t before{};
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, &before);  // no handler of ours may run in the child
  // Returns once the child has become the program, or has ended.
  const pid_t process =
      clone(becomeProgram, stack.data() + stack.size(), CLONE_VM | CLONE_VFORK | SIGCHLD, &program);
  sigprocmask(SIG_SETMASK, &before, nullptr);

  if (process < 0) return std::nullopt;
  if (program.hasBegun) return process;
  awaitEnd(process);
  return std::nullopt;
}

}  // namespace quillstead::OS
