#pragma once

#include "support/OS/Descriptor.h"
#include "support/OS/Environment.h"

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

/// The file with a session's state, in the cache directory. It is locked, so that no other server
/// reads or writes it meanwhile.
class SessionFile {
 public:
  /// Waits for other servers for at most a fifth of a second. Absent when that was too short, or
  /// when there is no place for the file. `session`: identifies the session.
  ///
  /// When it creates a file, it also removes those that were not written for a week.
  static std::optional<SessionFile> opened(std::string_view session,
                                           const OS::Environment& environment);

  /// The file's content; absent when it is new or damaged.
  [[nodiscard]] std::optional<SessionState> read() const;

  /// If this fails, or the process is killed meanwhile, the file may count as damaged.
  void write(const SessionState& state) const;

 private:
  explicit SessionFile(OS::Descriptor file) : file_(std::move(file)) {}

  OS::Descriptor file_;
};

}  // namespace quillstead::server
