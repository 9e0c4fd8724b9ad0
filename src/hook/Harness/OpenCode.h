#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/Payload.h"
#include "support/JSON/Writer.h"

#include <utility>

namespace quillstead::hook {

/// OpenCode, which sets no budgets and has no transcript.
class OpenCodeAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "opencode"; }
  [[nodiscard]] std::string_view clientName() const override { return "opencode"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override {
    const std::optional<JSON::Document> document = Payload::read(data);
    if (!document) return std::nullopt;
    const JSON::ObjectView payload = document->object();
    return HookInput{.prompt = Payload::prompt(payload),
                     .cwd = Payload::nonBlank(payload, "cwd"),
                     .sessionID = Payload::nonBlank(payload, "sessionID"),
                     .transcriptPath = std::nullopt};
  }
  [[nodiscard]] std::string envelope(std::string text, std::string_view /*event*/) const override {
    return JSON::write(JSON::objectOf({{"context", std::move(text)}}), JSON::Slashes::escaped);
  }
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::subagent; }
  [[nodiscard]] bool takesDecision() const override { return true; }
  [[nodiscard]] std::optional<std::string_view> silence() const override { return R"({})"; }
};

}  // namespace quillstead::hook
