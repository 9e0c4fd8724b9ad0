// Answers well and ends, but leaves a process behind that holds its streams a while longer.
#include "Replies.h"

int main() {
  using namespace quillstead;
  OS::writeAll(STDOUT_FILENO, Replies::answer());
  if (fork() != 0) return 0;
  usleep(600'000);
}
