// Reads a little of what it is asked and ends.
#include "Replies.h"

int main() {
  std::array<char, 16> buffer;
  quillstead::OS::read(STDIN_FILENO, buffer.data(), buffer.size());
}
