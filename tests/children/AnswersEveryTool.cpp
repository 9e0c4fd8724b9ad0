// A sound server of constant replies that needs no file and next to no time. It lifts the limit on
// its address space, so that a test can limit the hook's alone. QUILLSTEAD_TEST_RULES_SIZE: the
// rules are so many bytes long.
#include "Replies.h"

#include <sys/resource.h>

#include <cstdlib>

namespace {

using namespace quillstead;

void liftMemoryLimit() {
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_AS, &limit);
}

void stretchRules(std::string& answer) {
  const char* const wanted = std::getenv("QUILLSTEAD_TEST_RULES_SIZE");
  const std::size_t at = answer.find("Always test.");
  if (wanted && at != std::string::npos) answer.insert(at, std::strtoul(wanted, nullptr, 10), 'r');
}

}  // namespace

int main() {
  liftMemoryLimit();
  std::string answer = Replies::answer();
  stretchRules(answer);
  OS::writeAll(STDOUT_FILENO, answer);
}
