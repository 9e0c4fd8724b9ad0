#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/Payload.h"
#include "support/JSON/Writer.h"

#include <utility>

namespace quillstead::hook {

/// Cursor, which names the project by a list of workspace roots.
class CursorAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "cursor"; }
  [[nodiscard]] std::string_view clientName() const override { return "cursor"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override {
    const std::optional<JSON::Document> document = Payload::read(data);
    if (!document) return std::nullopt;
    const JSON::ObjectView payload = document->object();
    return HookInput{.prompt = Payload::prompt(payload),
                     .cwd = firstWorkspaceRoot(payload.find("workspace_roots")),
                     .sessionID = Payload::nonBlank(payload, "session_id"),
                     .transcriptPath = Payload::nonBlank(payload, "transcript_path")};
  }
  [[nodiscard]] std::string envelope(std::string text, std::string_view /*event*/) const override {
    return JSON::write(
        JSON::objectOf({{"continue", true}, {"additional_context", std::move(text)}}),
        JSON::Slashes::escaped);
  }
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::session; }
  [[nodiscard]] std::optional<std::string_view> silence() const override {
    return R"({"continue":true})";
  }
  [[nodiscard]] std::optional<std::int64_t> contextBudget() const override { return 8'000; }
  [[nodiscard]] std::optional<std::int64_t> cardCeiling() const override { return 5'000; }

 private:
  static std::optional<std::string> firstWorkspaceRoot(JSON::View value) {
    for (const JSON::View root : value.elements()) {
      if (auto path = Payload::nonBlank(root)) return path;
    }
    return std::nullopt;
  }
};

}  // namespace quillstead::hook
