#include "cli/ChildRun.h"

#include "support/OS/Descriptor.h"
#include "support/OS/MonotonicClock.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace quillstead::cli::ChildRun {

namespace {

using Clock = OS::MonotonicClock;

constexpr std::size_t mostKept = std::size_t{8} * 1024 * 1024;  ///< bytes of a stream

/// The system's description of how to start a program.
class SpawnPlan {
 public:
  SpawnPlan() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    sigset_t defaults{};
    sigset_t none{};
    sigemptyset(&none);
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);  // which we ignore
    posix_spawnattr_setsigdefault(&attributes_, &defaults);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setpgroup(&attributes_, 0);
    posix_spawnattr_setflags(
        &attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }

  void put(int descriptor, int number) {
    posix_spawn_file_actions_adddup2(&actions_, descriptor, number);
  }
  void enter(const std::string& directory) {
    if (!directory.empty()) {
      posix_spawn_file_actions_addchdir_np(&actions_, directory.c_str());
    }
  }

  /// Gives 0 or the error number.
  int start(const ChildStart& start, pid_t& process) const {
    std::vector<char*> command = pointersTo(start.command);
    std::vector<char*> environment = pointersTo(start.environment);
    return posix_spawn(&process, command.front(), &actions_, &attributes_, command.data(),
                       environment.data());
  }

 private:
  static std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
  }

  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

/// A running child process.
class Running {
 public:
  Running(const ChildStart& start, pid_t process, OS::Descriptor input, OS::Descriptor output,
          OS::Descriptor error)
      : start_(start),
        process_(process),
        input_(std::move(input)),
        output_(std::move(output)),
        error_(std::move(error)) {}

  ChildEnd finish(Clock::time_point begin) {
    constexpr std::chrono::milliseconds look(10);
    while (!hasEnded()) {
      const auto left = begin + start_.limit - Clock::now();
      if (left <= Clock::duration::zero()) return killed(ChildEnd::How::timedOut, begin);
      if (start_.isEnough && start_.isEnough(end_.output)) {
        return killed(ChildEnd::How::enough, begin);
      }
      carry(std::min<Clock::duration>(left, look));
    }
    end_.took = since(begin);
    kill(-process_, SIGKILL);  // what it may have left behind
    drain();
    end_.how = WIFSIGNALED(status_) ? ChildEnd::How::signalled : ChildEnd::How::exited;
    end_.status = WIFSIGNALED(status_) ? WTERMSIG(status_) : WEXITSTATUS(status_);
    return std::move(end_);
  }

 private:
  static std::chrono::milliseconds since(Clock::time_point begin) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
  }

  bool hasEnded() {
    pid_t reaped = 0;
    do {
      reaped = waitpid(process_, &status_, WNOHANG);
    } while (reaped < 0 && errno == EINTR);
    return reaped == process_;
  }

  ChildEnd killed(ChildEnd::How how, Clock::time_point begin) {
    end_.took = since(begin);
    kill(-process_, SIGKILL);
    while (waitpid(process_, &status_, 0) < 0 && errno == EINTR) {
    }
    drain();
    end_.how = how;
    return std::move(end_);
  }

  /// Reads what is available without waiting.
  void drain() {
    constexpr int most = 1'000;  // of reads: whoever else has the stream may write for ever
    for (int reads = 0; reads < most && read(output_, end_.output); ++reads) {
    }
    for (int reads = 0; reads < most && read(error_, end_.error); ++reads) {
    }
  }

  void carry(Clock::duration atMost) {
    std::array<pollfd, 3> entries{pollfd{.fd = input_.number(), .events = POLLOUT, .revents = 0},
                                  pollfd{.fd = output_.number(), .events = POLLIN, .revents = 0},
                                  pollfd{.fd = error_.number(), .events = POLLIN, .revents = 0}};
    if (written_ == start_.input.size()) entries[0].fd = -1;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(atMost);
    if (poll(entries.data(), entries.size(), static_cast<int>(wait.count())) <= 0) return;
    if (entries[0].revents != 0) feed();
    if (entries[1].revents != 0) read(output_, end_.output);
    if (entries[2].revents != 0) read(error_, end_.error);
  }

  void feed() {
    const OS::Transfer part =
        OS::write(input_.number(), std::string_view(start_.input).substr(written_));
    if (part.result == OS::Transfer::Result::notReady) return;
    written_ += part.count;
    const bool isOver = part.result != OS::Transfer::Result::moved;
    if (isOver) written_ = start_.input.size();
    if (isOver || (written_ == start_.input.size() && !start_.isEnough)) input_.close();
  }

  /// Reads once. False when nothing was available, or the stream ended and was closed.
  static bool read(OS::Descriptor& stream, std::string& kept) {
    if (!stream.isOpen()) return false;
    std::array<char, 65'536> buffer;
    const OS::Transfer part = OS::read(stream.number(), buffer.data(), buffer.size());
    if (part.result == OS::Transfer::Result::moved) {
      kept.append(buffer.data(), std::min(part.count, mostKept - kept.size()));
      return true;
    }
    if (part.result != OS::Transfer::Result::notReady) stream.close();
    return false;
  }

  const ChildStart& start_;
  pid_t process_;
  OS::Descriptor input_;
  OS::Descriptor output_;
  OS::Descriptor error_;
  std::size_t written_ = 0;
  int status_ = 0;
  ChildEnd end_{
      .how = ChildEnd::How::notStarted, .status = 0, .output = {}, .error = {}, .took = {}};
};

ChildEnd notStarted(int error) {
  return {.how = ChildEnd::How::notStarted, .status = error, .output = {}, .error = {}, .took = {}};
}

}  // namespace

ChildEnd run(const ChildStart& start) {
  auto input = OS::makePipe();
  auto output = OS::makePipe();
  auto error = OS::makePipe();
  if (!input || !output || !error) return notStarted(EMFILE);
  for (const OS::Descriptor* end : {&input->writing, &output->reading, &error->reading}) {
    if (!OS::makeNonBlocking(*end)) return notStarted(EMFILE);
  }
  SpawnPlan plan;
  plan.enter(start.directory);
  plan.put(input->reading.number(), STDIN_FILENO);
  plan.put(output->writing.number(), STDOUT_FILENO);
  plan.put(error->writing.number(), STDERR_FILENO);

  const Clock::time_point begin = Clock::now();
  pid_t process = 0;
  const int failure = plan.start(start, process);
  if (failure != 0) return notStarted(failure);
  input->reading.close();
  output->writing.close();
  error->writing.close();
  if (start.input.empty() && !start.isEnough) input->writing.close();
  return Running(start, process, std::move(input->writing), std::move(output->reading),
                 std::move(error->reading))
      .finish(begin);
}

std::vector<std::string> changed(const OS::Environment& environment,
                                 const std::vector<std::string>& changes) {
  std::vector<std::string> all;
  for (const char* const* entry = environment.entries(); *entry; ++entry) {
    const std::string_view text = *entry;
    const std::string_view name = text.substr(0, text.find('='));
    const bool isChanged = std::any_of(
        changes.begin(), changes.end(),
        [&](std::string_view change) { return change.substr(0, change.find('=')) == name; });
    if (!isChanged) all.emplace_back(text);
  }
  for (const std::string& change : changes) {
    if (change.find('=') != std::string::npos) all.push_back(change);
  }
  return all;
}

}  // namespace quillstead::cli::ChildRun
