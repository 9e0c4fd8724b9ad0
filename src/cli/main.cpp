#include "cli/Program.h"
#include "support/OS/Environment.h"

#include <csignal>
#include <span>

int main(int count, char** arguments) {
  using namespace quillstead;
  (void)std::signal(SIGPIPE, SIG_IGN);  // a reader that went away is an error, not the end

  const std::span<char*> all(arguments, static_cast<std::size_t>(count));
  return cli::Program::run(all.subspan(all.empty() ? 0 : 1), OS::Environment::ofProcess());
}
