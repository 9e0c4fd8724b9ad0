#include "support/OS/Environment.h"

extern "C" char** environ;  // NOLINT(readability-redundant-declaration): no header has it on macOS

namespace quillstead::OS {

Environment Environment::ofProcess() { return Environment(environ); }

std::optional<std::string_view> Environment::value(std::string_view name) const {
  for (const char* const* entry = entries_; *entry; ++entry) {
    const std::string_view text = *entry;
    if (text.size() > name.size() && text[name.size()] == '=' && text.starts_with(name)) {
      return text.substr(name.size() + 1);
    }
  }
  return std::nullopt;
}

}  // namespace quillstead::OS
