#include "HookRun.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <thread>

namespace quillstead {

namespace {

using std::chrono::steady_clock;
constexpr auto patience = std::chrono::seconds(isSanitized ? 180 : 60);

/// The array that exec wants.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

OS::Descriptor openFile(const std::string& path, int access) {
  const int creation = access == O_WRONLY ? O_CREAT | O_APPEND : 0;
  return OS::Descriptor(open(path.c_str(), access | creation | O_CLOEXEC, 0644));
}

/// Signals as the start asks for, whatever the test program's own are.
void setSignals(const HookStart& start) {
  for (int signal = 1; signal < NSIG; ++signal) {
    const auto& ignored = start.ignoredSignals;
    const bool isIgnored = std::find(ignored.begin(), ignored.end(), signal) != ignored.end();
    struct sigaction action {};
    action.sa_handler = isIgnored ? SIG_IGN : SIG_DFL;
    sigaction(signal, &action, nullptr);
  }
  sigset_t blocked{};
  sigemptyset(&blocked);
  for (const int signal : start.blockedSignals) sigaddset(&blocked, signal);
  sigprocmask(SIG_SETMASK, &blocked, nullptr);
}

void setLimits(const HookStart& start) {
  const auto limit = [](auto resource, rlim_t value) {
    const rlimit both{.rlim_cur = value, .rlim_max = value};
    setrlimit(resource, &both);
  };
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_STACK, rlim_t{8} << 20U);
  if (start.addressSpace) limit(RLIMIT_AS, *start.addressSpace);
}

void setDescriptors(const HookStart& start, const std::array<int, 3>& streams) {
  for (int stream = 0; stream < 3; ++stream)
    dup2(streams.at(static_cast<std::size_t>(stream)), stream);
  for (const int extra : start.extraDescriptors) dup2(STDERR_FILENO, extra);
  for (const int closed : start.closedDescriptors) close(closed);
}

/// In place of a pipe, sockets that keep apart what each write brings.
std::optional<OS::Pipe> makeSockets() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()) != 0) return std::nullopt;
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  return OS::Pipe{OS::Descriptor(ends[0]), OS::Descriptor(ends[1])};
}

/// What an end of a pipe has for us now; closes it at its end.
void drain(OS::Descriptor& stream, std::string& into, int& parts) {
  std::array<char, 65'536> buffer{};
  const OS::Transfer part = OS::read(stream.number(), buffer.data(), buffer.size());
  if (part.result == OS::Transfer::Result::moved) {
    into.append(buffer.data(), part.count);
    ++parts;
  } else if (part.result != OS::Transfer::Result::notReady) {
    stream.close();
  }
}

void ignoreBrokenPipes() {
  [[maybe_unused]] static const auto before = std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace

std::string hookExecutable() {
  const char* const chosen = std::getenv("QUILLSTEAD_HOOK_UNDER_TEST");
  return chosen ? chosen : QUILLSTEAD_HOOK_BINARY;
}

std::string childExecutable(std::string_view name) {
  return QUILLSTEAD_CHILDREN_DIRECTORY "/" + std::string(name);
}

HookRun::HookRun(const HookStart& start) : started_(steady_clock::now()) {
  ignoreBrokenPipes();
  this->start(start);
}

HookRun::~HookRun() {
  if (process_ <= 0 || reaped_) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void HookRun::start(const HookStart& start) {
  auto input = OS::makePipe();
  auto output = start.countsWrites ? makeSockets() : OS::makePipe();
  auto error = start.countsWrites ? makeSockets() : OS::makePipe();
  if (!input || !output || !error) throw std::runtime_error("no pipes to be had");
  input_ = std::move(input->writing);
  output_ = std::move(output->reading);
  error_ = std::move(error->reading);
  for (const OS::Descriptor* end : {&input_, &output_, &error_}) OS::makeNonBlocking(*end);
  if (!start.inputPath.empty()) input->reading = openFile(start.inputPath, O_RDONLY);
  if (!start.outputPath.empty()) output->writing = openFile(start.outputPath, O_WRONLY);
  if (!start.errorPath.empty()) error->writing = openFile(start.errorPath, O_WRONLY);
  if (start.nonBlocking)
    OS::makeNonBlocking(*start.nonBlocking == 0 ? input->reading : output->writing);

  std::vector<std::string> arguments{start.executable};
  arguments.insert(arguments.end(), start.arguments.begin(), start.arguments.end());
  std::vector<std::string> environment;
  for (const auto& [name, value] : start.environment) environment.push_back(name + "=" + value);
  const std::vector<char*> argumentPointers = pointersTo(arguments);
  const std::vector<char*> environmentPointers = pointersTo(environment);

  process_ = fork();
  if (process_ != 0) return;
  setDescriptors(start,
                 {input->reading.number(), output->writing.number(), error->writing.number()});
  if (!start.root.empty() && (chroot(start.root.c_str()) != 0 || chdir("/") != 0)) _exit(126);
  if (!start.directory.empty() && chdir(start.directory.c_str()) != 0) _exit(126);
  setLimits(start);
  setSignals(start);
  execve(start.executable.c_str(), argumentPointers.data(), environmentPointers.data());
  _exit(127);
}

bool HookRun::hasEnded() {
  if (reaped_) return true;
  int status = 0;
  rusage usage{};
  if (wait4(process_, &status, WNOHANG, &usage) != process_) return false;
  reaped_ = true;
  end_.duration =
      std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - started_);
#if defined(__APPLE__)
  end_.peakMemory = static_cast<std::size_t>(usage.ru_maxrss);
#else
  end_.peakMemory = static_cast<std::size_t>(usage.ru_maxrss) * 1024;
#endif
  if (WIFEXITED(status)) end_.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) end_.signal = WTERMSIG(status);
  return true;
}

/// Carries bytes both ways until `isDone`.
void HookRun::transferUntil(const std::function<bool()>& isDone) {
  constexpr int pauseMilliseconds = 5;  // the end of a process is no event that poll knows
  const auto giveUp = steady_clock::now() + patience;
  while (!isDone()) {
    if (steady_clock::now() > giveUp) {
      ADD_FAILURE() << "the hook, or one who holds its streams, does not end";
      kill(process_, SIGKILL);
      output_.close();
      error_.close();
      unwritten_ = {};
      return;
    }
    std::array<pollfd, 3> entries{
        pollfd{.fd = unwritten_.empty() ? -1 : input_.number(), .events = POLLOUT, .revents = 0},
        pollfd{.fd = output_.number(), .events = POLLIN, .revents = 0},
        pollfd{.fd = error_.number(), .events = POLLIN, .revents = 0}};
    if (poll(entries.data(), entries.size(), pauseMilliseconds) <= 0) continue;
    if (entries[0].revents != 0) {
      const OS::Transfer written = OS::write(input_.number(), unwritten_);
      if (written.result == OS::Transfer::Result::failed) unwritten_ = {};
      unwritten_.remove_prefix(std::min(written.count, unwritten_.size()));
    }
    if (entries[1].revents != 0) drain(output_, end_.output, end_.outputWrites);
    if (entries[2].revents != 0) drain(error_, end_.error, end_.errorWrites);
  }
}

void HookRun::feed(std::string_view bytes) {
  unwritten_ = bytes;
  transferUntil([this] { return unwritten_.empty(); });
}

void HookRun::awaitAnswer() const {
  pollfd entry{.fd = output_.number(), .events = POLLIN, .revents = 0};
  const int milliseconds = static_cast<int>(std::chrono::milliseconds(patience).count());
  if (poll(&entry, 1, milliseconds) != 1) ADD_FAILURE() << "the hook does not answer";
}

void HookRun::send(int signal) const { kill(process_, signal); }

HookEnd HookRun::finish() {
  closeInput();
  transferUntil([this] { return hasEnded() && !output_.isOpen() && !error_.isOpen(); });
  while (!hasEnded()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return std::move(end_);
}

HookEnd runHook(const HookStart& start, std::string_view input) {
  HookRun run(start);
  run.feed(input);
  return run.finish();
}

void awaitThat(const std::function<bool()>& condition) {
  const auto giveUp = steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (steady_clock::now() > giveUp) {
      ADD_FAILURE() << "what the test waits for does not happen";
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

}  // namespace quillstead
