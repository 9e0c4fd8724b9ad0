// Prints the signals that it was started with ignored or blocked: "ignored:1,13, blocked:2,".
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <csignal>
#include <string>

int main() {
  sigset_t mask{};
  sigprocmask(SIG_BLOCK, nullptr, &mask);
  std::string ignored;
  std::string blocked;
  for (int signal = 1; signal < 32; ++signal) {
    struct sigaction action {};
    const bool isKnown = sigaction(signal, nullptr, &action) == 0;
    if (isKnown && action.sa_handler == SIG_IGN) ignored += std::to_string(signal) + ",";
    if (sigismember(&mask, signal) == 1) blocked += std::to_string(signal) + ",";
  }
  quillstead::OS::writeAll(STDOUT_FILENO, "ignored:" + ignored + " blocked:" + blocked);
}
