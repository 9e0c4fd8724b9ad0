// Writes to standard output and standard error without an end.
#include "Replies.h"

int main() {
  using quillstead::OS::writeAll;
  const std::string block(65'536, 'b');
  if (fork() == 0) {
    while (writeAll(STDERR_FILENO, block)) {
    }
    return 0;
  }
  while (writeAll(STDOUT_FILENO, block)) {
  }
}
