#include "hook/StackOverflowProbe.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

namespace quillstead::hook::StackOverflowProbe {
namespace {

TEST(StackOverflowProbe, RunsTheStackOut) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (const int signal : {SIGSEGV, SIGBUS}) std::signal(signal, SIG_DFL);
    recurse(0);
    unit::print("came back");
  });
  EXPECT_TRUE(run.status == -SIGSEGV || run.status == -SIGBUS) << run.status;
  EXPECT_EQ(run.standardOutput, "");
}

TEST(StackOverflowProbe, RecursesOnlyWhenTheVariableIsExactly1) {
  for (const char* entry :
       {"OTHER=1", "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=",
        "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=0", "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=11",
        "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS= 1",
        "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=1 ",
        "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=true",
        "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=yes"}) {
    SCOPED_TRACE(entry);
    const unit::EnvironmentOf environment{entry};
    const unit::ForkedRun run = unit::inForkedProcess([&] {
      recurseIfAsked(environment);
      unit::print("went on");
    });
    EXPECT_EQ(run.standardOutput, "went on");
  }
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (const int signal : {SIGSEGV, SIGBUS}) std::signal(signal, SIG_DFL);
    recurseIfAsked(unit::EnvironmentOf{"QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=1"});
    unit::print("went on");
  });
  EXPECT_LT(run.status, 0);
  EXPECT_EQ(run.standardOutput, "");
}

}  // namespace
}  // namespace quillstead::hook::StackOverflowProbe
