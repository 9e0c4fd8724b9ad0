#include "hook/Telemetry/Stderr.h"

#include "support/OS/Descriptor.h"
#include "support/Text/Text.h"

#include <unistd.h>

#include <string>
#include <utility>

namespace quillstead::hook::Stderr {

namespace {

constexpr std::string_view ellipsis = "…";

/// `record` (UTF-8), cut between two characters so that it takes at most `longest` bytes with its
/// line end.
std::string cut(std::string record, std::size_t longest) {
  if (record.size() + 1 <= longest) return record;
  std::size_t end = longest - 1 - ellipsis.size();
  while (Text::isContinuation(record[end])) --end;
  record.resize(end);
  record += ellipsis;
  return record;
}

}  // namespace

void line(std::string_view text, std::size_t longest) {
  constexpr std::string_view name = "quillstead-hook: ";
  std::string record;
  record.reserve(name.size() + text.size() + 1);  // with the line end
  record.append(name).append(text);
  OS::writeIfRoom(STDERR_FILENO, cut(Text::repaired(std::move(record)), longest) + '\n');
}

}  // namespace quillstead::hook::Stderr
