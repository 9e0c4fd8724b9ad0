#pragma once

#include "server/Session/SessionState.h"
#include "support/OS/Environment.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// What a session was already shown, so that it is not shown twice. It is optional: if it is
/// absent, or its file was lost, everything is shown.
///
/// Calls within five seconds belong to one prompt and get the same answers, because a harness may
/// run several hooks for a prompt at once. Other servers wait while this object exists.
class SessionMemory {
 public:
  using Clock = std::chrono::system_clock;

  /// The session of a call.
  struct Caller {
    std::optional<std::string> sessionID;
    std::optional<std::string> transcriptPath;
  };

  /// Absent for a call without a session, when QUILLSTEAD_REPEAT is "always", and when the state is
  /// not available in time.
  static std::optional<SessionMemory> of(const Caller& caller, const OS::Environment& environment,
                                         Clock::time_point now = Clock::now());

  /// Whether `rules` were shown in full so recently that a pointer to them is enough.
  [[nodiscard]] bool knowsRules(std::string_view rules) const;

  /// Records that `rules`, or a pointer to them, were shown, and that `room` bytes are certainly
  /// left for cards beside them.
  void rulesShown(std::string_view rules, std::size_t room);
  void pointerShown(std::size_t room);

  /// Whether a card with this text was shown so recently that it can be left out.
  [[nodiscard]] bool knowsCard(std::string_view place, std::string_view text) const;

  /// Whether the card at that place was ever shown; if not, its file need not be read.
  [[nodiscard]] bool knowsPlace(std::string_view place) const;

  void cardShown(std::string_view place, std::string_view text);

  /// The bytes that are certainly left for cards in this prompt.
  [[nodiscard]] std::size_t room() const;

  /// Saves what was recorded; without this call it is lost.
  void keep();

 private:
  SessionMemory(SessionFile file, SessionState state, Clock::time_point now)
      : file_(std::move(file)), state_(std::move(state)), now_(now) {}

  SessionFile file_;
  SessionState state_;
  Clock::time_point now_;
};

}  // namespace quillstead::server
