#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/Payload.h"
#include "support/JSON/Writer.h"

#include <utility>

namespace quillstead::hook {

/// The payload and answer format that Claude Code and Codex share.
namespace ClaudeCode {

inline HookInput input(JSON::ObjectView payload) {
  return {.prompt = Payload::prompt(payload),
          .cwd = Payload::nonBlank(payload, "cwd"),
          .sessionID = Payload::nonBlank(payload, "session_id"),
          .transcriptPath = Payload::nonBlank(payload, "transcript_path")};
}

/// `{"hookSpecificOutput":{"hookEventName":<event>,"additionalContext":<text>}}`
inline std::string envelope(std::string text, std::string_view event) {
  return JSON::write(
      JSON::objectOf(
          {{"hookSpecificOutput",
            JSON::objectOf({{"hookEventName", event}, {"additionalContext", std::move(text)}})}}),
      JSON::Slashes::escaped);
}

}  // namespace ClaudeCode

/// Claude Code. It has no neutral answer: when nothing is injected, nothing is printed. An answer
/// at the slot `pretool` must not carry a decision, because the user would no longer be asked.
class ClaudeCodeAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "claude-code"; }
  [[nodiscard]] std::string_view clientName() const override { return "claude-code"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override {
    const std::optional<JSON::Document> payload = Payload::read(data);
    // Cursor can run Claude Code's hooks too. Cursor's own hook answers such a payload.
    if (!payload || payload->object().find("cursor_version").exists()) return std::nullopt;
    return ClaudeCode::input(payload->object());
  }
  [[nodiscard]] std::string envelope(std::string text, std::string_view event) const override {
    return ClaudeCode::envelope(std::move(text), event);
  }
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::subagent; }
  [[nodiscard]] std::optional<std::int64_t> contextBudget() const override { return 10'000; }
  [[nodiscard]] std::optional<std::int64_t> cardHeadCeiling() const override { return 10'000; }
};

}  // namespace quillstead::hook
