#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// The state of one session between its prompts. Prompts count from 1; 0 is none. Times are
/// milliseconds since 1970, by the wall clock.
struct SessionState {
  /// A card that the session was shown.
  struct Card {
    std::uint64_t place;        ///< identifies the card
    std::uint64_t fingerprint;  ///< of its text
    std::uint64_t prompt;       ///< when it was shown last
  };

  std::uint64_t prompt = 0;      ///< the current one
  std::int64_t promptBegan = 0;  ///< the time of its first call

  std::uint64_t rules = 0;        ///< the fingerprint of the rules that were shown in full
  std::uint64_t rulesPrompt = 0;  ///< when that was
  std::int64_t rulesTime = 0;

  std::uint64_t pointerPrompt = 0;  ///< the last prompt that was answered with a pointer
  std::uint64_t room = 0;           ///< bytes that are certainly left beside the current rules

  std::uint64_t transcriptRead = 0;  ///< bytes of the transcript that were read
  std::vector<Card> cards;           ///< the most recently shown last

  /// Reads what `written` returned; absent for anything else, such as a part of it.
  static std::optional<SessionState> parse(std::string_view text);

  [[nodiscard]] std::string written() const;
};

}  // namespace quillstead::server
