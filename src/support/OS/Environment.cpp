#include "support/OS/Environment.h"

namespace quillstead::OS {

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
