#pragma once

#include "hook/Harness/ClaudeCode.h"
#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/Payload.h"

#include <utility>

namespace quillstead::hook {

/// Codex, whose payload and answer look like Claude Code's.
class CodexAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "codex"; }
  [[nodiscard]] std::string_view clientName() const override { return "codex"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override {
    const std::optional<JSON::Document> payload = Payload::read(data);
    if (!payload) return std::nullopt;
    return ClaudeCode::input(payload->object());
  }
  [[nodiscard]] std::string envelope(std::string text, std::string_view event) const override {
    return ClaudeCode::envelope(std::move(text), event);
  }
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::subagent; }
  [[nodiscard]] bool takesDecision() const override { return true; }
  [[nodiscard]] std::optional<std::string_view> silence() const override {
    return R"({"continue":true})";
  }
  [[nodiscard]] std::optional<std::int64_t> contextBudget() const override { return 30'000; }
};

}  // namespace quillstead::hook
