#include "server/CommandLine.h"
#include "server/Server.h"
#include "support/OS/Environment.h"

#include <unistd.h>

#include <csignal>
#include <span>

int main(int count, char** arguments) {
  using namespace quillstead;
  using namespace quillstead::server;
  // A closed pipe or a file size limit must be an error of the call, not the end of the process.
  for (const int signal : {SIGPIPE, SIGXFSZ}) (void)std::signal(signal, SIG_IGN);

  const std::span<char*> all(arguments, static_cast<std::size_t>(count));
  const OS::Environment environment = OS::Environment::ofProcess();
  const auto status = CommandLine::answer(all.subspan(all.empty() ? 0 : 1), environment);
  return status ? *status : Server::run(STDIN_FILENO, STDOUT_FILENO, environment);
}
