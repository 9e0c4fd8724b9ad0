#include "hook/FailOpenBelt.h"
#include "hook/Hook.h"
#include "support/OS/Environment.h"

#include <csignal>
#include <span>

int main(int count, char** arguments) {
  using namespace quillstead;
  static_cast<void>(
      std::signal(SIGPIPE, SIG_IGN));  // a harness that went away is an error, not the end
  FailOpenBelt::endQuietlyOnFailure();

  const std::span<char*> all(arguments, static_cast<std::size_t>(count));
  return Hook::run(all.subspan(all.empty() ? 0 : 1), OS::Environment::ofProcess());
}
