// Says so on standard error, leaves its standard input unread and never ends by itself.
#include "support/OS/Descriptor.h"

#include <unistd.h>

int main() {
  quillstead::OS::writeAll(STDERR_FILENO, "not reading\n");
  for (;;) pause();
}
