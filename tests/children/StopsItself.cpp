// Stops, as a debugger or a terminal would stop it, before it has answered.
#include "Replies.h"

#include <csignal>

int main() {
  using namespace quillstead;
  const std::string answer = Replies::answer();
  std::raise(SIGSTOP);
  OS::writeAll(STDOUT_FILENO, answer);
}
