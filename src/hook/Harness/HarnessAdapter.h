#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook {

/// A prompt's payload, from any harness. An optional text is absent when it is only white space,
/// and is not trimmed otherwise.
struct HookInput {
  std::string prompt;                         ///< the user's prompt; empty when there is none
  std::optional<std::string> cwd;             ///< the project directory the harness names
  std::optional<std::string> sessionID;       ///< the harness's session identifier
  std::optional<std::string> transcriptPath;  ///< path of the harness's transcript file
};

/// Which identity a call of the memory service's tools is stamped with.
enum class CallStamp { session, subagent };

/// All that the hook knows about one harness: the format of its payload and of its answer.
class HarnessAdapter {
 public:
  HarnessAdapter(const HarnessAdapter&) = delete;
  HarnessAdapter& operator=(const HarnessAdapter&) = delete;

  /// The name on the command line.
  [[nodiscard]] virtual std::string_view name() const = 0;

  /// The name under which the hook introduces itself to the memory server.
  [[nodiscard]] virtual std::string_view clientName() const = 0;

  /// Absent when the payload cannot be read, or is not for this harness.
  [[nodiscard]] virtual std::optional<HookInput> parse(std::string_view data) const = 0;

  /// The answer document with `text` in it, without a line end. `event` is the harness's name for
  /// the event, which some documents contain.
  [[nodiscard]] virtual std::string envelope(std::string text, std::string_view event) const = 0;

  /// The neutral answer when there is nothing to inject; absent: print nothing at all.
  [[nodiscard]] virtual std::optional<std::string_view> silence() const { return std::nullopt; }

  /// The stamp at the slot `pretool`.
  [[nodiscard]] virtual CallStamp stamp() const = 0;

  /// Whether an answer at that slot may allow the call, if the command line asks for it.
  [[nodiscard]] virtual bool takesDecision() const { return false; }

  /// The most context that goes out, in bytes; absent: no limit.
  [[nodiscard]] virtual std::optional<std::int64_t> contextBudget() const { return std::nullopt; }

  /// The limits, in bytes, that the hook sends to the server for the rules card and for its head;
  /// absent: none is sent.
  [[nodiscard]] virtual std::optional<std::int64_t> cardCeiling() const { return std::nullopt; }
  [[nodiscard]] virtual std::optional<std::int64_t> cardHeadCeiling() const { return std::nullopt; }

 protected:
  constexpr HarnessAdapter() = default;
  ~HarnessAdapter() = default;
};

}  // namespace quillstead::hook
