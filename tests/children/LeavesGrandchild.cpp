// Ends at once and leaves a process behind that holds its streams and writes a line 4 seconds
// later.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <chrono>
#include <thread>

int main() {
  using quillstead::OS::writeAll;
  writeAll(STDOUT_FILENO, "child\n");
  if (fork() != 0) return 0;
  std::this_thread::sleep_for(std::chrono::seconds(4));
  writeAll(STDOUT_FILENO, "grandchild\n");
}
