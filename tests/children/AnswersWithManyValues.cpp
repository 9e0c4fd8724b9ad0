// Answers well, but the answer holds ten million numbers that nobody asked for.
#include "Replies.h"

int main() {
  using namespace quillstead;
  std::string answer = Replies::answer();
  std::string numbers = "\"numbers\":[0";
  for (int count = 1; count < 10'000'000; ++count) numbers += ",0";
  numbers += "],";
  const std::string_view result = R"("id":2,"result":{)";
  answer.insert(answer.find(result) + result.size(), numbers);
  OS::writeAll(STDOUT_FILENO, answer);
}
