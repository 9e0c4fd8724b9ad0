#include "server/Session/SessionState.h"

#include "support/Text/Text.h"

#include <array>
#include <charconv>
#include <initializer_list>

namespace quillstead::server {

namespace {

constexpr std::string_view header = "quillstead-session 1";
constexpr std::string_view footer = "end";

/// Takes "name number number …" apart; false when the line is anything else.
template <typename... Numbers>
bool readLine(std::string_view line, std::string_view name, Numbers&... numbers) {
  if (!line.starts_with(name)) return false;
  line.remove_prefix(name.size());
  const auto readNumber = [&line](auto& number) {
    if (!line.starts_with(' ')) return false;
    line.remove_prefix(1);
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc()) return false;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    return true;
  };
  return (readNumber(numbers) && ...) && line.empty();
}

template <typename... Numbers>
void writeLine(std::string& text, std::string_view name, Numbers... numbers) {
  text += name;
  ((text += ' ', text += std::to_string(numbers)), ...);
  text += '\n';
}

}  // namespace

std::optional<SessionState> SessionState::parse(std::string_view text) {
  SessionState state;
  const auto next = [&text] { return text.empty() ? std::string_view() : Text::takeLine(text); };
  const bool sound = next() == header &&
                     readLine(next(), "prompt", state.prompt, state.promptBegan) &&
                     readLine(next(), "rules", state.rules, state.rulesPrompt, state.rulesTime) &&
                     readLine(next(), "pointer", state.pointerPrompt, state.room) &&
                     readLine(next(), "transcript", state.transcriptRead);
  if (!sound) return std::nullopt;
  while (!text.empty()) {
    const std::string_view line = Text::takeLine(text);
    if (line == footer) return text.empty() ? std::optional(std::move(state)) : std::nullopt;
    Card card{};
    if (!readLine(line, "card", card.place, card.fingerprint, card.prompt)) return std::nullopt;
    state.cards.push_back(card);
  }
  return std::nullopt;
}

std::string SessionState::written() const {
  std::string text(header);
  text += '\n';
  writeLine(text, "prompt", prompt, promptBegan);
  writeLine(text, "rules", rules, rulesPrompt, rulesTime);
  writeLine(text, "pointer", pointerPrompt, room);
  writeLine(text, "transcript", transcriptRead);
  for (const Card& card : cards) {
    writeLine(text, "card", card.place, card.fingerprint, card.prompt);
  }
  return text.append(footer).append("\n");
}

}  // namespace quillstead::server
