// What a served prompt brings is in HookTest, which begins at the command line.
#include "hook/Harness/Harnesses.h"
#include "hook/Hook.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace quillstead::hook::Hook {
namespace {

TEST(Serve, PrintsTheSilenceOfAnAdapter) {
  for (const HarnessAdapter* adapter : Harnesses::all()) {
    const unit::ForkedRun result = unit::inForkedProcess([&] { _exit(silence(*adapter)); });
    EXPECT_EQ(result.status, 0);
    const auto text = adapter->silence();
    EXPECT_EQ(result.standardOutput, text ? std::string(*text) + "\n" : "");
  }
}

}  // namespace
}  // namespace quillstead::hook::Hook
