// Answers well and ends, but leaves a process behind that goes on writing a gigabyte.
#include "Replies.h"

int main() {
  using namespace quillstead;
  OS::writeAll(STDOUT_FILENO, Replies::answer());
  if (fork() != 0) return 0;
  const std::string block(1'000'000, '\n');
  for (int blocks = 0; blocks < 1'000; ++blocks) {
    if (!OS::writeAll(STDOUT_FILENO, block)) return 0;
  }
}
