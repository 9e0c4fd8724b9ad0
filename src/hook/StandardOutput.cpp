#include "hook/StandardOutput.h"

#include "hook/FailOpenBelt.h"
#include "support/OS/Descriptor.h"

#include <unistd.h>

namespace quillstead::StandardOutput {

void answer(std::string_view document) {
  const FailOpenBelt::Pause pause;
  OS::writeLine(STDOUT_FILENO, document);
  FailOpenBelt::answered = true;
}

}  // namespace quillstead::StandardOutput
