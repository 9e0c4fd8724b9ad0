#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook {

/// A prompt's payload, whatever harness it came from. The optional texts are there only when they
/// hold more than white space, and are kept untrimmed.
struct HookInput {
  std::string prompt;                         ///< the user's prompt; empty when there is none
  std::optional<std::string> cwd;             ///< the project directory the harness names
  std::optional<std::string> sessionID;       ///< the harness's session identifier
  std::optional<std::string> transcriptPath;  ///< path of the harness's transcript file
};

/// How calls of the memory service's tools are told who makes them.
enum class CallStamp { session, subagent };

/// What the hook has to know of one harness: how its payload reads and how its answer looks.
class HarnessAdapter {
 public:
  HarnessAdapter(const HarnessAdapter&) = delete;
  HarnessAdapter& operator=(const HarnessAdapter&) = delete;

  /// The name on the command line.
  [[nodiscard]] virtual std::string_view name() const = 0;

  /// The name under which the hook introduces itself to the memory server.
  [[nodiscard]] virtual std::string_view clientName() const = 0;

  /// Absent when the payload is of no use for this harness.
  [[nodiscard]] virtual std::optional<HookInput> parse(std::string_view data) const = 0;

  /// The document that hands `text` to the harness, without a line end. `event` is what the
  /// harness calls the moment; some documents name it.
  [[nodiscard]] virtual std::string envelope(std::string text, std::string_view event) const = 0;

  /// The neutral answer when there is nothing to inject; absent: print nothing at all.
  [[nodiscard]] virtual std::optional<std::string_view> silence() const { return std::nullopt; }

  /// The stamp at the slot `pretool`.
  [[nodiscard]] virtual CallStamp stamp() const = 0;

  /// Whether an answer at that slot may say that the call is allowed, when the command line asks
  /// for it.
  [[nodiscard]] virtual bool takesDecision() const { return false; }

  /// The most context that goes out, in bytes; absent: no limit.
  [[nodiscard]] virtual std::optional<std::int64_t> contextBudget() const { return std::nullopt; }

  /// The ceilings, in bytes, that the server is asked to keep for the rules card and for its head;
  /// absent: not asked for.
  [[nodiscard]] virtual std::optional<std::int64_t> cardCeiling() const { return std::nullopt; }
  [[nodiscard]] virtual std::optional<std::int64_t> cardHeadCeiling() const { return std::nullopt; }

 protected:
  constexpr HarnessAdapter() = default;
  ~HarnessAdapter() = default;
};

}  // namespace quillstead::hook
