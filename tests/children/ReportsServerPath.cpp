// Prints where the hook's code, running in this program, expects the memory server.
#include "hook/MCP/MCPBinary.h"
#include "support/OS/Descriptor.h"

#include <unistd.h>

int main() {
  using namespace quillstead;
  using namespace quillstead::hook;
  OS::writeAll(STDOUT_FILENO, MCPBinary::resolve(OS::Environment::ofProcess()));
}
