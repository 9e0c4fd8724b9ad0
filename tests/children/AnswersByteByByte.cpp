// Answers well, one byte at a time.
#include "Replies.h"

int main() {
  using namespace quillstead;
  const std::string answer = Replies::answer();
  for (std::size_t at = 0; at < answer.size(); ++at) {
    OS::writeAll(STDOUT_FILENO, std::string_view(answer).substr(at, 1));
    usleep(100);
  }
}
