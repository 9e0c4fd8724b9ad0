#include "hook/Harness/HarnessAdapter.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

/// Provides what every adapter has to, and nothing more.
class PlainAdapter final : public HarnessAdapter {
 public:
  [[nodiscard]] std::string_view name() const override { return "plain"; }
  [[nodiscard]] std::string_view clientName() const override { return "plain"; }
  [[nodiscard]] std::optional<HookInput> parse(std::string_view /*data*/) const override {
    return HookInput{};
  }
  [[nodiscard]] std::string envelope(std::string text, std::string_view /*event*/) const override {
    return text;
  }
  [[nodiscard]] CallStamp stamp() const override { return CallStamp::subagent; }
};

TEST(HarnessAdapter, ReportsAbsentForWhatAnAdapterDoesNotProvide) {
  const PlainAdapter adapter;
  EXPECT_EQ(adapter.silence(), std::nullopt);
  EXPECT_FALSE(adapter.takesDecision());
  EXPECT_EQ(adapter.contextBudget(), std::nullopt);
  EXPECT_EQ(adapter.cardCeiling(), std::nullopt) << "not zero";
  EXPECT_EQ(adapter.cardHeadCeiling(), std::nullopt) << "not zero";
}

TEST(HookInput, HasAnEmptyPromptAndNothingElseAtFirst) {
  const HookInput input;
  EXPECT_EQ(input.prompt, "");
  EXPECT_EQ(input.cwd, std::nullopt);
  EXPECT_EQ(input.sessionID, std::nullopt);
  EXPECT_EQ(input.transcriptPath, std::nullopt);
}

}  // namespace
}  // namespace quillstead::hook
