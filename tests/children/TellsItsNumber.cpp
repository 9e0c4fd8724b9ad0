// Writes its process number to the file that QUILLSTEAD_TEST_NUMBER_FILE names, and never ends by
// itself.
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

int main() {
  const std::string file = std::getenv("QUILLSTEAD_TEST_NUMBER_FILE");
  const std::string unfinished = file + ".unfinished";
  {
    const quillstead::OS::Descriptor log = quillstead::OS::openForAppending(unfinished.c_str());
    quillstead::OS::writeAll(log.number(), std::to_string(getpid()));
  }
  std::rename(unfinished.c_str(), file.c_str());
  for (;;) pause();
}
