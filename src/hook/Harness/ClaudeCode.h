#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "support/JSON/View.h"

namespace quillstead::hook {

/// Claude Code. It has no neutral answer: when nothing is injected, nothing is printed. An answer
/// at the slot `pretool` must not carry a decision, because the user would no longer be asked.
class ClaudeCodeAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "claude-code"; }
  [[nodiscard]] std::string_view clientName() const override { return "claude-code"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override;
  [[nodiscard]] std::string envelope(std::string text, std::string_view event) const override;
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::subagent; }
  [[nodiscard]] std::optional<std::int64_t> contextBudget() const override { return 10'000; }
  [[nodiscard]] std::optional<std::int64_t> cardHeadCeiling() const override { return 10'000; }
};

/// The payload and answer format that Claude Code and Codex share.
namespace ClaudeCode {

HookInput input(JSON::ObjectView payload);

/// `{"hookSpecificOutput":{"hookEventName":<event>,"additionalContext":<text>}}`
std::string envelope(std::string text, std::string_view event);

}  // namespace ClaudeCode
}  // namespace quillstead::hook
