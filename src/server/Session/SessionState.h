#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// What is remembered of one session between its prompts. Prompts are counted from 1; 0 is none.
/// Times are milliseconds since 1970 by the wall clock.
struct SessionState {
  /// A card that the session was shown.
  struct Card {
    std::uint64_t place;        ///< tells cards apart
    std::uint64_t fingerprint;  ///< of its text
    std::uint64_t prompt;       ///< at which it was shown last
  };

  std::uint64_t prompt = 0;      ///< the current one
  std::int64_t promptBegan = 0;  ///< when its first call came

  std::uint64_t rules = 0;        ///< the fingerprint of the rules that were shown whole
  std::uint64_t rulesPrompt = 0;  ///< when that was
  std::int64_t rulesTime = 0;

  std::uint64_t pointerPrompt = 0;  ///< the last prompt that was answered with a pointer
  std::uint64_t room = 0;           ///< bytes that are surely left beside the current rules

  std::uint64_t transcriptRead = 0;  ///< bytes of the transcript that were looked through
  std::vector<Card> cards;           ///< those shown last come last

  /// What `written` gave; absent for anything else, such as half of it.
  static std::optional<SessionState> parse(std::string_view text);

  [[nodiscard]] std::string written() const;
};

}  // namespace quillstead::server
