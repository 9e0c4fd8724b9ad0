// Writes to standard error without an end.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <string>

int main() {
  const std::string block(65'536, 'e');
  while (quillstead::OS::writeAll(STDERR_FILENO, block)) {
  }
}
