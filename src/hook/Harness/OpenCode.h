#pragma once

#include "hook/Harness/HarnessAdapter.h"

namespace quillstead::hook {

/// OpenCode, which sets no budgets and has no transcript.
class OpenCodeAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "opencode"; }
  [[nodiscard]] std::string_view clientName() const override { return "opencode"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override;
  [[nodiscard]] std::string envelope(std::string text, std::string_view event) const override;
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::subagent; }
  [[nodiscard]] bool takesDecision() const override { return true; }
  [[nodiscard]] std::optional<std::string_view> silence() const override { return R"({})"; }
};

}  // namespace quillstead::hook
