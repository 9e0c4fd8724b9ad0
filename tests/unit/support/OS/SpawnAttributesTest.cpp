#include "support/OS/SpawnAttributes.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

namespace quillstead::OS {
namespace {

TEST(SpawnAttributes, LetAChildKeepItsStandardStreamsOnly) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (int i = 0; i < 20; ++i) [[maybe_unused]] const int inheritable = dup(STDERR_FILENO);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    // Said aloud, since not every system keeps them by itself.
    for (const int stream : {0, 1, 2}) posix_spawn_file_actions_adddup2(&actions, stream, stream);
    short flags = 0;
    if (!keepOnlyStandardStreams(actions, flags)) unit::print("not recorded");
    posix_spawnattr_t attributes{};
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, flags);

    std::string program = unit::child("ListsDescriptors");
    const std::array<char*, 2> arguments{program.data(), nullptr};
    pid_t process = 0;
    posix_spawn(&process, program.c_str(), &actions, &attributes, arguments.data(), nullptr);
    waitpid(process, nullptr, 0);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  });
  EXPECT_EQ(run.standardOutput, "0 1 2 ");
}

}  // namespace
}  // namespace quillstead::OS
