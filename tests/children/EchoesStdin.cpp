// Copies its standard input to its standard output as it comes.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <array>

int main() {
  using namespace quillstead;
  std::array<char, 16'384> buffer;
  for (;;) {
    const OS::Transfer part = OS::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (part.result != OS::Transfer::Result::moved) return 0;
    if (!OS::writeAll(STDOUT_FILENO, {buffer.data(), part.count})) return 1;
  }
}
