// Any bytes as what a failed server wrote to its standard error.
#include "Property.h"
#include "hook/Telemetry/ChildStderr.h"

#include <algorithm>

using namespace quillstead;
using namespace quillstead::hook;

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string raw(Fuzz::bytes(data, size));
  const auto record = ChildStderr::record("tool", raw, 1);
  const std::string said = Text::repaired(raw);
  Fuzz::require(record.has_value() != Text::isBlank(said), "only white space says nothing");
  if (!record) return 0;

  constexpr std::string_view heading = "the tool lane's MCP child said (exit 1):\n";
  Fuzz::require(record->starts_with(heading), "a record says whose words it has");
  const std::string_view tail = std::string_view(*record).substr(heading.size());
  Fuzz::require(Fuzz::isUTF8(tail), "a record is UTF-8");
  Fuzz::require(said.find(tail) != std::string::npos, "a record has the server's own words");
  Fuzz::require(Text::firstCharacters(tail, 1'000) == tail,
                "a record has at most 1,000 characters");
  int lines = 1;
  for (std::size_t at = 0; at < tail.size(); ++at) {
    if (tail[at] == '\n' && (at == 0 || tail[at - 1] != '\r')) ++lines;
  }
  Fuzz::require(lines <= 5, "a record has at most 5 lines");
  return 0;
}
