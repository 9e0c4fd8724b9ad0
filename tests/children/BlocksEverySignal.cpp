// Blocks every signal that can be blocked and never ends by itself.
#include <unistd.h>

#include <csignal>

int main() {
  sigset_t all{};
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, nullptr);
  for (;;) pause();
}
