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

std::optional<std::string> record(std::string_view tool, std::string raw,
                                  std::optional<std::int32_t> status) {
  const std::string said = Text::repaired(std::move(raw));
  const std::string_view trimmed = Text::trimmed(said);
  if (trimmed.empty()) return std::nullopt;

  std::string text = "the ";
  text.append(tool).append(" lane's MCP child said");
  if (status) text.append(" (exit ").append(std::to_string(*status)).append(")");
  text.append(":\n").append(Text::firstCharacters(lastLines(trimmed), mostCharacters));
  return text;
}

void forward(std::string_view tool, std::string raw, std::optional<std::int32_t> status) {
  if (const auto text = record(tool, std::move(raw), status)) Stderr::line(*text);
}

}  // namespace quillstead::ChildStderr
