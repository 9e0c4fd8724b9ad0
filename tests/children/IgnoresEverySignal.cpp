// Ignores every signal that can be ignored, and never ends by itself.
#include <unistd.h>

#include <csignal>

int main() {
  for (int signal = 1; signal < NSIG; ++signal) static_cast<void>(std::signal(signal, SIG_IGN));
  for (;;) pause();
}
