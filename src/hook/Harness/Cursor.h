#pragma once

#include "hook/Harness/HarnessAdapter.h"

namespace quillstead::hook {

/// Cursor, which names the project by a list of workspace roots.
class CursorAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "cursor"; }
  [[nodiscard]] std::string_view clientName() const override { return "cursor"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view data) const override;
  [[nodiscard]] std::string envelope(std::string text, std::string_view event) const override;
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::session; }
  [[nodiscard]] std::optional<std::string_view> silence() const override {
    return R"({"continue":true})";
  }
  [[nodiscard]] std::optional<std::int64_t> contextBudget() const override { return 8'000; }
  [[nodiscard]] std::optional<std::int64_t> cardCeiling() const override { return 5'000; }
};

}  // namespace quillstead::hook
