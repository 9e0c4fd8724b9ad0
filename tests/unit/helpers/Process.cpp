#include "unit/helpers/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace quillstead::unit {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File temporaryFile(std::string_view contents = {}) {
  File file(std::tmpfile(), std::fclose);
  EXPECT_NE(file, nullptr);
  if (!contents.empty()) std::fwrite(contents.data(), 1, contents.size(), file.get());
  std::rewind(file.get());
  return file;
}

/// Reads by position, so that whoever writes the file keeps their place in it.
std::string contentsOfFile(const File& file) {
  std::string all;
  std::array<char, 65'536> buffer;
  for (;;) {
    const ssize_t count =
        pread(fileno(file.get()), buffer.data(), buffer.size(), static_cast<off_t>(all.size()));
    if (count <= 0) return all;
    all.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

/// What the programs of the hook do first of all, so that a child that no longer reads is an error
/// and not the end.
class BrokenPipesIgnored : public ::testing::Environment {
 public:
  void SetUp() override { std::signal(SIGPIPE, SIG_IGN); }
};

[[maybe_unused]] const ::testing::Environment* const brokenPipesIgnored =
    ::testing::AddGlobalTestEnvironment(new BrokenPipesIgnored);

}  // namespace

std::string child(std::string_view name) {
  return std::string(QUILLSTEAD_TEST_CHILDREN) + "/" + std::string(name);
}

std::vector<int> openDescriptors() {
  constexpr int highest = 1024;
  std::vector<int> open;
  for (int number = 0; number < highest; ++number) {
    if (fcntl(number, F_GETFD) != -1) open.push_back(number);
  }
  return open;
}

ForkedRun inForkedProcess(const std::function<void()>& body, std::string_view input) {
  constexpr unsigned secondsAllowed = 120;
  const File in = temporaryFile(input);
  const File out = temporaryFile();
  const File error = temporaryFile();
  const pid_t process = fork();
  if (process == 0) {
    alarm(secondsAllowed);
    dup2(fileno(in.get()), STDIN_FILENO);
    dup2(fileno(out.get()), STDOUT_FILENO);
    dup2(fileno(error.get()), STDERR_FILENO);
    [&]() noexcept { body(); }();  // no exception gets past it, into the test framework
    _exit(0);
  }
  EXPECT_GT(process, 0);
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return {.status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status),
          .standardOutput = contentsOfFile(out),
          .standardError = contentsOfFile(error)};
}

void print(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(STDOUT_FILENO, text.data(), text.size());
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

Captured::Captured(int descriptor)
    : descriptor_(descriptor), before_(dup(descriptor)), file_(temporaryFile()) {
  dup2(fileno(file_.get()), descriptor_);
}

Captured::~Captured() {
  dup2(before_, descriptor_);
  close(before_);
}

std::string Captured::text() const { return contentsOfFile(file_); }

ScopedVariable::ScopedVariable(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)) {
  if (const char* const present = std::getenv(name_.c_str())) before_ = present;
  if (value) {
    setenv(name_.c_str(), value->c_str(), 1);
  } else {
    unsetenv(name_.c_str());
  }
}

ScopedVariable::~ScopedVariable() {
  if (before_) {
    setenv(name_.c_str(), before_->c_str(), 1);
  } else {
    unsetenv(name_.c_str());
  }
}

EnvironmentOf::EnvironmentOf(std::initializer_list<std::string> entries) : entries_(entries) {
  for (const std::string& entry : entries_) pointers_.push_back(entry.c_str());
  pointers_.push_back(nullptr);
}

}  // namespace quillstead::unit
