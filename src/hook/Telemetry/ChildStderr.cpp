#include "hook/Telemetry/ChildStderr.h"

#include "hook/Telemetry/Stderr.h"
#include "support/Text/Text.h"

namespace quillstead::hook::ChildStderr {

namespace {

constexpr int mostLines = 5;
constexpr std::size_t mostCharacters = 1000;
constexpr std::size_t mostBytes = 65'536;  ///< a character may take any number of bytes

/// The last lines of `text`. A line ends at a line feed, but not at one after a carriage return:
/// the pair is one character.
std::string_view lastLines(std::string_view text) {
  int lines = 0;
  for (std::size_t at = text.size(); at > 0; --at) {
    const bool endsLine = text[at - 1] == '\n' && !text.substr(0, at - 1).ends_with('\r');
    if (endsLine && ++lines == mostLines) return text.substr(at);
  }
  return text;
}

}  // namespace

std::optional<std::string> record(std::string_view tool, std::string_view raw,
                                  std::optional<std::int32_t> status) {
  const std::string_view trimmed = Text::trimmed(raw);
  if (trimmed.empty()) return std::nullopt;
  const std::string_view last = lastLines(trimmed).substr(0, mostBytes);

  std::string text = "the ";
  text.append(tool).append(" lane's MCP child said");
  if (status) text.append(" (exit ").append(std::to_string(*status)).append(")");
  text.append(":\n").append(Text::firstCharacters(last, mostCharacters));
  return Text::repaired(std::move(text));
}

void forward(std::string_view tool, std::string_view raw, std::optional<std::int32_t> status) {
  if (const auto text = record(tool, raw, status)) Stderr::line(*text, mostBytes);
}

}  // namespace quillstead::hook::ChildStderr
