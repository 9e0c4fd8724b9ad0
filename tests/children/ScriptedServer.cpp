// A memory server that does what a directory tells it to. QUILLSTEAD_TEST_SERVER names it.
//
// Each run first writes down what it was started with, in a directory of its own, calls/<number>:
// process, arguments, environment, directory, ignored, blocked, descriptors, input, and at last
// ready. While it lives it holds a lock on the file alive there.
//
// Then it plays the files <tool>.<what> of the directory, for the tool that the request calls
// ("any" when there is a file named unread, which also says not to read the request): error is
// written to standard error; after delay milliseconds output is written to standard output, in
// pieces of so many bytes if pieces says so; after linger milliseconds it dies by the signal in
// signal, or exits with the status in status, or 0. With heir, another process does the waiting and
// the writing, and this one ends at once. It ignores SIGTERM when there is a file named stubborn.

#include "support/JSON/Reader.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

extern "C" char** environ;  // NOLINT(readability-redundant-declaration): absent from macOS headers

namespace {

namespace fs = std::filesystem;
using namespace quillstead;

/// What a process inherits, taken before this program changes any of it.
struct Inheritance {
  std::string ignored;
  std::string blocked;
  std::string descriptors;
};

Inheritance inheritance() {
  Inheritance found;
  sigset_t mask{};
  sigprocmask(SIG_SETMASK, nullptr, &mask);
  for (int signal = 1; signal < NSIG; ++signal) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0) continue;
    if (action.sa_handler == SIG_IGN) found.ignored += std::to_string(signal) + " ";
    if (sigismember(&mask, signal) == 1) found.blocked += std::to_string(signal) + " ";
  }
  constexpr int mostDescriptors = 1024;
  for (int descriptor = 0; descriptor < mostDescriptors; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) found.descriptors += std::to_string(descriptor) + " ";
  }
  return found;
}

std::optional<std::string> content(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream text;
  text << file.rdbuf();
  return std::move(text).str();
}

void record(const fs::path& path, std::string_view text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string listed(const char* const* texts) {
  std::string list;
  for (; *texts; ++texts) list.append(*texts).push_back('\0');
  return list;
}

fs::path newCall(const fs::path& script) {
  fs::create_directories(script / "calls");
  for (int number = 0;; ++number) {
    fs::path call = script / "calls" / std::to_string(number);
    if (mkdir(call.c_str(), 0777) == 0) return call;
    if (errno != EEXIST) std::_Exit(99);
  }
}

std::string standardInput() {
  std::string all;
  std::array<char, 65'536> buffer{};
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count <= 0) return all;
    all.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

/// The name in the parameters of the first request that has one.
std::string calledTool(std::string_view requests) {
  while (!requests.empty()) {
    const std::string_view line = requests.substr(0, requests.find('\n'));
    requests.remove_prefix(std::min(line.size() + 1, requests.size()));
    const auto request = JSON::read(line);
    const auto parameters = request ? request->object().find("params").object() : std::nullopt;
    const auto name = parameters ? parameters->find("name").string() : std::nullopt;
    if (name) return std::string(*name);
  }
  return "none";
}

/// The files of one tool.
class Script {
 public:
  Script(fs::path directory, std::string tool)
      : directory_(std::move(directory)), tool_(std::move(tool)) {}

  [[nodiscard]] std::optional<std::string> text(std::string_view what) const {
    return content(directory_ / (tool_ + "." + std::string(what)));
  }
  [[nodiscard]] int number(std::string_view what) const {
    const auto digits = text(what);
    return digits ? std::stoi(*digits) : 0;
  }
  void wait(std::string_view what) const {
    std::this_thread::sleep_for(std::chrono::milliseconds(number(what)));
  }

 private:
  fs::path directory_;
  std::string tool_;
};

void print(int descriptor, std::string_view text, std::size_t piece) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), std::min(text.size(), piece));
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
    if (piece < text.size()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

[[noreturn]] void play(const Script& script) {
  constexpr std::size_t unlimited = std::size_t{1} << 20U;
  print(STDERR_FILENO, script.text("error").value_or(""), unlimited);
  if (script.text("heir") && fork() != 0) std::_Exit(0);
  script.wait("delay");
  const int piece = script.number("pieces");
  print(STDOUT_FILENO, script.text("output").value_or(""),
        piece > 0 ? static_cast<std::size_t>(piece) : unlimited);
  script.wait("linger");
  if (const int signal = script.number("signal"); signal != 0) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
  }
  std::_Exit(script.number("status"));
}

}  // namespace

int main(int /*count*/, char** arguments) {
  const Inheritance inherited = inheritance();
  const char* const directory = std::getenv("QUILLSTEAD_TEST_SERVER");
  if (!directory) return 98;
  const fs::path script = directory;
  if (fs::exists(script / "stubborn")) std::signal(SIGTERM, SIG_IGN);

  const fs::path call = newCall(script);
  const int lock = open((call / "alive").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  flock(lock, LOCK_EX);
  record(call / "process", std::to_string(getpid()));
  record(call / "arguments", listed(arguments));
  record(call / "environment", listed(environ));
  std::error_code noDirectory;
  record(call / "directory", fs::current_path(noDirectory).string());
  record(call / "ignored", inherited.ignored);
  record(call / "blocked", inherited.blocked);
  record(call / "descriptors", inherited.descriptors);

  std::string tool = "any";
  if (!fs::exists(script / "unread")) {
    const std::string requests = standardInput();
    record(call / "input", requests);
    tool = calledTool(requests);
  }
  record(call / "ready", "");
  play(Script(script, tool));
}
