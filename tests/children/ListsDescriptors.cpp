// Prints the numbers of the descriptors it was started with, each with a blank behind it.
#include "support/OS/Descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>

int main() {
  std::string list;
  for (int number = 0; number < 1024; ++number) {
    if (fcntl(number, F_GETFD) != -1) list += std::to_string(number) + " ";
  }
  quillstead::OS::writeAll(STDOUT_FILENO, list);
}
