#include "support/OS/Environment.h"
#include "support/OS/Spawn.h"

#include <spawn.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace quillstead::OS {

namespace {

/// What the system does in the child before it starts the program.
class SpawnSetUp {
 public:
  explicit SpawnSetUp(const StandardStreams& streams) {
    usable_ = posix_spawn_file_actions_init(&actions_) == 0;
    usable_ = posix_spawnattr_init(&attributes_) == 0 && usable_;
    usable_ = usable_ && redirect(streams.input, STDIN_FILENO) &&
              redirect(streams.output, STDOUT_FILENO) && redirect(streams.error, STDERR_FILENO);

    sigset_t all{};
    sigset_t none{};
    sigfillset(&all);
    for (const int unchangeable : {SIGKILL, SIGSTOP}) sigdelset(&all, unchangeable);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(
        &attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_CLOEXEC_DEFAULT);
  }
  SpawnSetUp(const SpawnSetUp&) = delete;
  SpawnSetUp& operator=(const SpawnSetUp&) = delete;
  ~SpawnSetUp() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }

  [[nodiscard]] std::optional<pid_t> spawn(const std::string& executable) const {
    if (!usable_) return std::nullopt;
    const std::array<char*, 2> arguments{const_cast<char*>(executable.c_str()), nullptr};
    auto* const environment = const_cast<char* const*>(Environment::ofProcess().entries());
    pid_t process = 0;
    const int error = posix_spawn(&process, executable.c_str(), &actions_, &attributes_,
                                  arguments.data(), environment);
    return error == 0 ? std::optional(process) : std::nullopt;
  }

 private:
  bool redirect(int from, int to) {
    return posix_spawn_file_actions_adddup2(&actions_, from, to) == 0;
  }

  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
  bool usable_ = false;
};

}  // namespace

std::optional<pid_t> spawn(const std::string& executable, const StandardStreams& streams) {
  return SpawnSetUp(streams).spawn(executable);
}

}  // namespace quillstead::OS
