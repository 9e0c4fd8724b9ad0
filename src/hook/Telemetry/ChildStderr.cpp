#include "hook/Telemetry/ChildStderr.h"

#include "hook/Telemetry/Stderr.h"
#include "support/Text/Text.h"

namespace quillstead::ChildStderr {

namespace {

constexpr int mostLines = 5;
constexpr std::size_t mostCharacters = 1000;

/// The last lines of `text`. A line ends at a line feed, but not at one behind a carriage return:
/// the two are one character.
std::string_view lastLines(std::string_view text) {
  int lines = 0;
  for (std::size_t at = text.size(); at > 0; --at) {
    const bool endsLine = text[at - 1] == '\n' && !text.substr(0, at - 1).ends_with('\r');
    if (endsLine && ++lines == mostLines) return text.substr(at);
  }
  return text;
}

}  // namespace

void forward(std::string_view tool, std::string raw, std::optional<std::int32_t> status) {
  const std::string text = Text::repaired(std::move(raw));
  const std::string_view trimmed = Text::trimmed(text);
  if (trimmed.empty()) return;

  std::string record = "the ";
  record.append(tool).append(" lane's MCP child said");
  if (status) record.append(" (exit ").append(std::to_string(*status)).append(")");
  record.append(":\n").append(Text::firstCharacters(lastLines(trimmed), mostCharacters));
  Stderr::line(record);
}

}  // namespace quillstead::ChildStderr
