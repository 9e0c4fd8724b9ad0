#include "hook/FailOpenBelt.h"
#include "hook/Hook.h"
#include "support/OS/Environment.h"

#include <csignal>
#include <span>

int main(int count, char** arguments) {
  using namespace quillstead;
  using namespace quillstead::hook;
  // Writing to a closed pipe, or to a log at its size limit, must fail and not end the process.
  for (const int signal : {SIGPIPE, SIGXFSZ}) static_cast<void>(std::signal(signal, SIG_IGN));
  FailOpenBelt::endQuietlyOnFailure();

  const std::span<char*> all(arguments, static_cast<std::size_t>(count));
  return Hook::run(all.subspan(all.empty() ? 0 : 1), OS::Environment::ofProcess());
}
