#include "hook/Telemetry/Stderr.h"

#include "support/OS/Descriptor.h"
#include "support/Text/Text.h"

#include <unistd.h>

#include <string>

namespace quillstead::Stderr {

void line(std::string_view text) {
  std::string record = "quillstead-hook: ";
  record += text;
  OS::writeLine(STDERR_FILENO, Text::repaired(std::move(record)));
}

}  // namespace quillstead::Stderr
