#pragma once

#include "hook/Harness/HarnessAdapter.h"

namespace quillstead {

/// Claude Code. It has no neutral answer: when nothing is injected, nothing is printed.
class ClaudeCodeAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "claude-code"; }
  [[nodiscard]] std::string_view clientName() const override { return "claude-code"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override;
  [[nodiscard]] std::string envelope(std::string text) const override;
  [[nodiscard]] std::optional<std::int64_t> contextBudget() const override { return 10'000; }
  [[nodiscard]] std::optional<std::int64_t> cardHeadCeiling() const override { return 10'000; }
};

}  // namespace quillstead
