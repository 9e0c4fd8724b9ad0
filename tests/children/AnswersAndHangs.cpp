// Answers well and never ends.
#include "Replies.h"

int main() {
  using namespace quillstead;
  OS::writeAll(STDOUT_FILENO, Replies::answer());
  for (;;) pause();
}
