#include "support/OS/Descriptor.h"
#include "support/OS/Paths.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>

namespace quillstead::OS {

namespace {

constexpr std::size_t userField = 2;
constexpr std::size_t homeField = 5;

std::string contents(const char* path) {
  const Descriptor file(open(path, O_RDONLY | O_CLOEXEC));
  std::string all;
  std::array<char, 4096> buffer;
  for (;;) {
    const Transfer part = read(file.number(), buffer.data(), buffer.size());
    if (part.result != Transfer::Result::moved) return all;
    all.append(buffer.data(), part.count);
  }
}

/// The colon-separated field of that number; empty when the line has fewer.
std::string_view field(std::string_view line, std::size_t number) {
  for (; number > 0; --number) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return {};
    line.remove_prefix(colon + 1);
  }
  return line.substr(0, line.find(':'));
}

bool isOf(std::string_view line, uid_t user) {
  const std::string_view text = field(line, userField);
  uid_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number == user;
}

}  // namespace

std::optional<std::string> ownExecutable() {
  std::array<char, PATH_MAX> path;
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  if (length > 0 && static_cast<std::size_t>(length) < path.size()) {
    return std::string(path.data(), static_cast<std::size_t>(length));
  }
  const std::string firstArgument = program_invocation_name;
  return firstArgument.empty() ? std::nullopt : std::optional(firstArgument);
}

// Reads the file itself: the system's look-up needs shared modules, which a static program cannot
// load.
std::string homeDirectory() {
  const std::string database = contents("/etc/passwd");
  std::string_view rest = database;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (isOf(line, getuid())) return std::string(field(line, homeField));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
  }
  return {};
}

std::string_view cacheDirectoryInHome() { return ".cache"; }

}  // namespace quillstead::OS
