// Ends by the signal whose number is in QUILLSTEAD_TEST_SIGNAL, having written a line to standard
// error.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>

int main() {
  quillstead::OS::writeAll(STDERR_FILENO, "about to die\n");
  const char* const number = std::getenv("QUILLSTEAD_TEST_SIGNAL");
  const int signal = number ? std::atoi(number) : SIGTERM;  // NOLINT(cert-err34-c): a test says it
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}
