#pragma once

#include "server/Session/SessionFile.h"
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

/// What a session was already shown, so that it is not told twice. It is never needed: where it is
/// absent, or its file was lost, everything is shown.
///
/// Calls that come within five seconds belong to one prompt and get the same answers, because a
/// harness may run several hooks for a prompt at once. Other servers wait while this one lives.
class SessionMemory {
 public:
  using Clock = std::chrono::system_clock;

  /// The session that makes a call.
  struct Caller {
    std::optional<std::string> sessionID;
    std::optional<std::string> transcriptPath;
  };

  /// Absent for a call without a session, when QUILLSTEAD_REPEAT is "always", and when the state
  /// cannot be had in time.
  static std::optional<SessionMemory> of(const Caller& caller, const OS::Environment& environment,
                                         Clock::time_point now = Clock::now());

  /// Whether `rules` were shown whole, and lie so little behind that a pointer to them does.
  [[nodiscard]] bool knowsRules(std::string_view rules) const;

  /// Notes that `rules` were shown, or a pointer to them, so that `room` bytes are surely left for
  /// cards beside them.
  void rulesShown(std::string_view rules, std::size_t room);
  void pointerShown(std::size_t room);

  /// Whether a card with this text was shown, and lies so little behind that it need not come.
  [[nodiscard]] bool knowsCard(std::string_view place, std::string_view text) const;

  /// Whether anything at that place was shown at all, which spares reading it.
  [[nodiscard]] bool knowsPlace(std::string_view place) const;

  void cardShown(std::string_view place, std::string_view text);

  /// The bytes that are surely left for cards in this prompt.
  [[nodiscard]] std::size_t room() const;

  /// Keeps what was noted. Without this nothing is.
  void keep();

 private:
  SessionMemory(SessionFile file, SessionState state, Clock::time_point now)
      : file_(std::move(file)), state_(std::move(state)), now_(now) {}

  SessionFile file_;
  SessionState state_;
  Clock::time_point now_;
};

}  // namespace quillstead::server
