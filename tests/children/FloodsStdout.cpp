// Writes to standard output without an end.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <string>

int main() {
  const std::string block(65'536, 'x');
  while (quillstead::OS::writeAll(STDOUT_FILENO, block)) {
  }
}
