// Answers well, behind as many empty objects, each on a line, as the hook still reads on from.
#include "Replies.h"

int main() {
  using namespace quillstead;
  const std::string answer = Replies::answer();
  std::string lines;
  while (lines.size() < 33'000'000) lines += "{}\n";
  OS::writeAll(STDOUT_FILENO, lines);
  OS::writeAll(STDOUT_FILENO, answer);
}
