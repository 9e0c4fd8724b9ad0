#include "hook/FailOpenBelt.h"

#include "support/OS/Descriptor.h"
#include "support/OS/ExceptionPorts.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <new>

namespace quillstead::hook::FailOpenBelt {

namespace {

constexpr std::array faultSignals{SIGILL, SIGTRAP, SIGSEGV, SIGBUS, SIGFPE, SIGABRT};

// What the signal handler reads. It is static storage, filled in before the first handler is
// installed, and only read after that.
std::array<char, longestSilence + 1> renderedSilence;
std::size_t renderedLength = 0;
alignas(16) std::array<char, 65'536> alternateStack;
static_assert(std::atomic<bool>::is_always_lock_free);

/// The handler's work. It only calls functions that are safe in a signal handler.
[[noreturn]] void end() {
  const char* rest = renderedSilence.data();
  std::size_t remaining = answered ? 0 : renderedLength;
  while (remaining > 0) {
    const ssize_t written = write(STDOUT_FILENO, rest, remaining);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) break;
    rest += written;
    remaining -= static_cast<std::size_t>(written);
  }
  _exit(0);
}

extern "C" void endOnFault(int /*signal*/) { end(); }

/// What a fault signal does.
struct sigaction ending() {
  struct sigaction action {};
  action.sa_handler = endOnFault;
  action.sa_flags = SA_ONSTACK;
  sigemptyset(&action.sa_mask);
  return action;
}

bool isArmed() { return renderedLength > 0; }

void render(std::string_view silence) {
  char* const lineEnd = std::copy(silence.begin(), silence.end(), renderedSilence.begin());
  *lineEnd = '\n';
  renderedLength = silence.size() + 1;
}

void useAlternateStack() {
  stack_t stack{};
  stack.ss_sp = alternateStack.data();
  stack.ss_size = alternateStack.size();
  sigaltstack(&stack, nullptr);
}

}  // namespace

void arm(std::optional<std::string_view> silence) {
  if (!silence || silence->size() > longestSilence || isArmed()) return;
  render(*silence);
  useAlternateStack();
  OS::detachExceptionPorts();
  const struct sigaction action = ending();
  for (const int signal : faultSignals) sigaction(signal, &action, nullptr);
  OS::unblock(faultSignals);
}

void installHandler(int signal) {
  const struct sigaction action = ending();
  sigaction(signal, &action, nullptr);
}

void endQuietlyOnFailure() {
  std::set_new_handler(end);
  std::set_terminate(end);
}

void answer(std::string_view document) {
  const Pause pause;
  OS::writeLine(STDOUT_FILENO, document);
  answered = true;
}

void answerAndEnd(std::string_view document) {
  const Pause pause;
  OS::writeLine(STDOUT_FILENO, document);
  _exit(0);
}

Pause::Pause() {
  if (isArmed()) blocked_.emplace(OS::SignalMask::Change::block, faultSignals);
}

}  // namespace quillstead::hook::FailOpenBelt
