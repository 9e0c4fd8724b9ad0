#include "server/CommandLine.h"
#include "server/Server.h"
#include "support/OS/Environment.h"

#include <unistd.h>

#include <csignal>
#include <span>

int main(int count, char** arguments) {
  using namespace quillstead;
  (void)std::signal(SIGPIPE, SIG_IGN);

  const std::span<char*> all(arguments, static_cast<std::size_t>(count));
  if (const auto status = CommandLine::answer(all.subspan(all.empty() ? 0 : 1))) return *status;
  return Server::run(STDIN_FILENO, STDOUT_FILENO, OS::Environment::ofProcess());
}
