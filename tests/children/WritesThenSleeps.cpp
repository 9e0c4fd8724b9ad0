// Writes one line to each of its output streams and never ends by itself.
#include "support/OS/Descriptor.h"

#include <unistd.h>

int main() {
  quillstead::OS::writeAll(STDOUT_FILENO, "an answer too early\n");
  quillstead::OS::writeAll(STDERR_FILENO, "what went wrong\n");
  for (;;) pause();
}
