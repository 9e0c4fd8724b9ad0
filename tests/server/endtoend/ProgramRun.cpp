#include "server/endtoend/ProgramRun.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace quillstead::server::test {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::string makeDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillstead-run-XXXXXX").string();
  const char* const made = mkdtemp(pattern.data());
  EXPECT_NE(made, nullptr);
  return made ? made : "";
}

}  // namespace

ProgramRun::ProgramRun(const ProgramStart& start) : directory_(makeDirectory()) {
  unit::writeFile(directory_ + "/input", start.input);
  std::vector<std::string> arguments{start.executable};
  arguments.insert(arguments.end(), start.arguments.begin(), start.arguments.end());
  std::vector<std::string> environment = start.environment;

  constexpr int toCreate = O_WRONLY | O_CREAT | O_TRUNC;
  constexpr mode_t mode = 0600;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, (directory_ + "/input").c_str(),
                                   O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (directory_ + "/output").c_str(),
                                   toCreate, mode);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (directory_ + "/error").c_str(),
                                   toCreate, mode);
  EXPECT_EQ(posix_spawn(&process_, start.executable.c_str(), &actions, nullptr,
                        pointersTo(arguments).data(), pointersTo(environment).data()),
            0);
  posix_spawn_file_actions_destroy(&actions);
}

ProgramRun::ProgramRun(ProgramRun&& other) noexcept
    : directory_(std::exchange(other.directory_, {})),
      process_(std::exchange(other.process_, -1)) {}

ProgramRun::~ProgramRun() {
  if (process_ > 0) {
    kill();
    (void)finish();
  }
  std::error_code ignored;
  if (!directory_.empty()) std::filesystem::remove_all(directory_, ignored);
}

void ProgramRun::kill() const { ::kill(process_, SIGKILL); }

ProgramEnd ProgramRun::finish() {
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  return {.output = unit::contentsOf(directory_ + "/output"),
          .error = unit::contentsOf(directory_ + "/error"),
          .status = WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt};
}

std::string serverProgram() { return QUILLSTEAD_MCP_BINARY; }
std::string hookProgram() { return QUILLSTEAD_HOOK_BINARY; }

}  // namespace quillstead::server::test
