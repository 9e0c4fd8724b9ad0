#include "hook/MCP/ChildProcess.h"

#include "support/OS/Descriptor.h"
#include "support/OS/ExitWatch.h"
#include "support/OS/Poll.h"
#include "support/OS/Spawn.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>

namespace quillstead::hook::ChildProcess {

namespace {

using Clock = OS::MonotonicClock;

/// An end of each of the pipes between a child and us: all ours, or all the child's.
struct Streams {
  OS::Descriptor input;
  OS::Descriptor output;
  OS::Descriptor error;
};

struct Started {
  pid_t process;
  Streams streams;
};

std::optional<Started> start(const std::string& executable) {
  auto input = OS::makePipe();
  auto output = OS::makePipe();
  auto error = OS::makePipe();
  if (!input || !output || !error) return std::nullopt;

  Streams ours{std::move(input->writing), std::move(output->reading), std::move(error->reading)};
  for (const OS::Descriptor* end : {&ours.input, &ours.output, &ours.error}) {
    if (!OS::makeNonBlocking(*end)) return std::nullopt;
  }
  const Streams theirs{std::move(input->reading), std::move(output->writing),
                       std::move(error->writing)};
  const std::optional<pid_t> process =
      OS::spawn(executable, {theirs.input.number(), theirs.output.number(), theirs.error.number()});
  if (!process) return std::nullopt;
  return Started{*process, std::move(ours)};
}

/// When a leash that begins now ends, at most a day from now.
Clock::time_point endOf(Seconds leash) {
  constexpr Seconds longest =
      std::chrono::hours(24);  // the addition cannot overflow after this clamp
  return Clock::now() +
         std::chrono::ceil<Clock::duration>(std::clamp(leash, Seconds::zero(), longest));
}

/// Carries the bytes to and from one started child until it has ended or its leash has run out.
class Supervisor {
 public:
  Supervisor(Started child, const Task& task, const OS::ExitWatch& watch)
      : process_(child.process), streams_(std::move(child.streams)), task_(task), watch_(watch) {}

  ChildOutcome supervise() {
    const Clock::time_point end = endOf(task_.leash);
    feed();  // most inputs fit into an empty pipe
    while (!hasEnded_) {
      const auto remaining = end - Clock::now();
      if (remaining > Clock::duration::zero()) {
        carry(remaining);
      } else if (!reap()) {
        return killed();
      }
    }
    while (streams_.output.isOpen() || streams_.error.isOpen()) carry(std::nullopt);
    return Exited{exitStatus(), std::move(output_), std::move(error_)};
  }

 private:
  enum Entry : std::size_t { inputEntry, outputEntry, errorEntry, exitEntry, entryCount };

  /// Waits for an event and handles it.
  void carry(std::optional<std::chrono::nanoseconds> atMost) {
    std::array<pollfd, entryCount> entries{};
    entries[inputEntry] = {.fd = streams_.input.number(), .events = POLLOUT, .revents = 0};
    entries[outputEntry] = readingEntry(streams_.output, output_);
    entries[errorEntry] = readingEntry(streams_.error, error_);
    entries[exitEntry] = {
        .fd = hasEnded_ ? -1 : watch_.descriptor(), .events = POLLIN, .revents = 0};

    OS::waitForEvents(entries, atMost);
    if (entries[inputEntry].revents != 0) feed();
    if (entries[outputEntry].revents != 0) drain(streams_.output, output_);
    if (entries[errorEntry].revents != 0) drain(streams_.error, error_);
    if (entries[exitEntry].revents != 0) {
      watch_.acknowledge();
      reap();
    }
    if (!output_.empty() && !firstOutputTold_) {
      firstOutputTold_ = true;
      if (task_.firstOutput) task_.firstOutput();
    }
  }

  /// Stops reading from a running child when we have kept as much as we may, so that it waits.
  [[nodiscard]] pollfd readingEntry(const OS::Descriptor& stream, const std::string& kept) const {
    const bool isFull = kept.size() >= longestOutput && !hasEnded_;
    return {.fd = isFull ? -1 : stream.number(), .events = POLLIN, .revents = 0};
  }

  /// Writes what the child takes now. Closes its input when all is written, or it takes no more.
  void feed() {
    const OS::Transfer part = OS::write(streams_.input.number(), task_.input.substr(written_));
    if (part.result == OS::Transfer::Result::notReady) return;
    written_ += part.count;
    const bool isWritten = written_ == task_.input.size();
    if (isWritten || part.result != OS::Transfer::Result::moved) streams_.input.close();
  }

  /// Reads once from a stream that has data, or closes it at its end.
  static OS::Transfer::Result drain(OS::Descriptor& stream, std::string& kept) {
    static std::array<char, 65'536> buffer;  // on the stack it would cost 16 page faults
    const OS::Transfer part = OS::read(stream.number(), buffer.data(), buffer.size());
    if (part.result == OS::Transfer::Result::moved) {
      kept.append(buffer.data(), std::min(part.count, longestOutput - kept.size()));
    } else if (part.result != OS::Transfer::Result::notReady) {
      stream.close();
    }
    return part.result;
  }

  /// Whether the child has ended; stores its status if so.
  bool reap() {
    pid_t reaped = 0;
    do {
      reaped = waitpid(process_, &waitStatus_, WNOHANG);
    } while (reaped < 0 && errno == EINTR);
    hasEnded_ = reaped == process_;
    return hasEnded_;
  }

  [[nodiscard]] std::int32_t exitStatus() const {
    int status = waitStatus_;  // a copy: Darwin's macros do not take a const
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  }

  ChildOutcome killed() {
    kill(process_, SIGKILL);
    // The child's own output is there already. A process that it left behind may write for ever.
    constexpr int mostReads = 64;
    for (int reads = 0; reads < mostReads && streams_.error.isOpen(); ++reads) {
      if (drain(streams_.error, error_) != OS::Transfer::Result::moved) break;
    }
    reap();
    return TimedOut{std::move(error_)};
  }

  pid_t process_;
  Streams streams_;
  const Task& task_;
  const OS::ExitWatch& watch_;
  std::size_t written_ = 0;
  std::string output_;
  std::string error_;
  bool firstOutputTold_ = false;
  bool hasEnded_ = false;
  int waitStatus_ = 0;
};

}  // namespace

ChildOutcome run(const Task& task) {
  // A command name that was not found on PATH. A file of that name in the current directory would
  // belong to the project, so it must not run.
  if (task.executable.find('/') == std::string::npos) return NotSpawned{};
  auto wake = OS::makePipe();
  if (!wake) return NotSpawned{};
  const OS::ExitWatch watch(std::move(*wake));  // before the start: a child may end at once
  std::optional<Started> child = start(task.executable);
  if (!child) return NotSpawned{};
  return Supervisor(std::move(*child), task, watch).supervise();
}

}  // namespace quillstead::hook::ChildProcess
