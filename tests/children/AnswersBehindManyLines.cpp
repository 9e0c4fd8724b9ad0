// Answers well, behind 40 MiB of empty objects, each on a line.
#include "Replies.h"

int main() {
  using namespace quillstead;
  const std::string answer = Replies::answer();
  constexpr std::size_t size = std::size_t{40} * 1024 * 1024;
  std::string lines;
  while (lines.size() < 60'000) lines += "{}\n";
  for (std::size_t written = 0; written < size; written += lines.size()) {
    OS::writeAll(STDOUT_FILENO, lines);
  }
  OS::writeAll(STDOUT_FILENO, answer);
}
