#include "server/Session/Transcript.h"

#include "support/OS/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace quillstead::server::Transcript {

namespace {

constexpr std::uint64_t mostAdded = 16'777'216;  // bytes

/// The marks of a compaction. In a user's or a tool's text the quotes would be escaped.
constexpr std::array<std::string_view, 3> marks{
    R"("subtype":"compact_boundary")",  // Claude Code
    R"("isCompactSummary":true)",       // Claude Code
    R"("type":"compacted")",            // Codex
};

struct File {
  OS::Descriptor descriptor;
  std::uint64_t length;
};

std::optional<File> opened(const std::string& path) {
  OS::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status {};
  if (!file.isOpen() || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return File{.descriptor = std::move(file), .length = static_cast<std::uint64_t>(status.st_size)};
}

/// The whole lines between `begin` and `end`.
std::string lines(const File& file, std::uint64_t begin) {
  std::string text(file.length - begin, '\0');
  if (lseek(file.descriptor.number(), static_cast<off_t>(begin), SEEK_SET) < 0) return {};
  std::size_t count = 0;
  while (count < text.size()) {
    const OS::Transfer part =
        OS::read(file.descriptor.number(), text.data() + count, text.size() - count);
    if (part.result != OS::Transfer::Result::moved) break;
    count += part.count;
  }
  text.resize(count);
  const std::size_t lastEnd = text.rfind('\n');
  text.resize(lastEnd == std::string::npos ? 0 : lastEnd + 1);
  return text;
}

}  // namespace

Change changeSince(const std::string& path, std::uint64_t read) {
  const std::optional<File> file = opened(path);
  if (!file) return {.read = read, .newContext = false};
  if (file->length < read || file->length - read > mostAdded) {
    return {.read = file->length, .newContext = true};
  }
  const std::string added = lines(*file, read);
  const bool compacted = std::any_of(marks.begin(), marks.end(), [&added](std::string_view mark) {
    return added.find(mark) != std::string::npos;
  });
  return {.read = read + added.size(), .newContext = compacted};
}

std::uint64_t length(const std::string& path) {
  const std::optional<File> file = opened(path);
  return file ? file->length : 0;
}

}  // namespace quillstead::server::Transcript
