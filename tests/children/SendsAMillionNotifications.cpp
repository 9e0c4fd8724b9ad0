// Answers well, behind a million notifications.
#include "Replies.h"

int main() {
  using namespace quillstead;
  const std::string answer = Replies::answer();
  std::string notifications;
  for (int count = 0; count < 1'000'000; ++count) {
    notifications += R"({"jsonrpc":"2.0","method":"n"})"
                     "\n";
  }
  OS::writeAll(STDOUT_FILENO, notifications);
  OS::writeAll(STDOUT_FILENO, answer);
}
