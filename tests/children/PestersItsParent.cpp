// Sends the process that started it thousands of signals that mean nothing, and answers well
// between them.
#include "Replies.h"

#include <csignal>

int main() {
  using namespace quillstead;
  const std::string answer = Replies::answer();
  const auto pester = [] {
    for (int times = 0; times < 2'000; ++times) {
      kill(getppid(), SIGCHLD);
      kill(getppid(), SIGWINCH);
    }
  };
  pester();
  OS::writeAll(STDOUT_FILENO, std::string_view(answer).substr(0, answer.size() / 2));
  pester();
  OS::writeAll(STDOUT_FILENO, std::string_view(answer).substr(answer.size() / 2));
  pester();
}
