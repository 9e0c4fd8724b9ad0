// Closes its standard input before anything else, and answers what it cannot know is asked.
#include "Replies.h"

int main() {
  using namespace quillstead;
  close(STDIN_FILENO);
  usleep(20'000);
  OS::writeAll(STDOUT_FILENO, Replies::rules);
}
