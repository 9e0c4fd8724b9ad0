#include "hook/Harness/CommandFlag.h"

namespace quillstead::hook::CommandFlag {

namespace {

std::optional<std::string_view> unlessEmpty(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return text;
}

}  // namespace

std::optional<std::string_view> value(std::string_view flag, std::span<char* const> arguments) {
  for (std::size_t at = 0; at < arguments.size(); ++at) {
    std::string_view argument = arguments[at];
    if (!argument.starts_with(flag)) continue;
    argument.remove_prefix(flag.size());
    if (argument.starts_with('=')) return unlessEmpty(argument.substr(1));
    if (!argument.empty()) continue;
    return at + 1 < arguments.size() ? unlessEmpty(arguments[at + 1]) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace quillstead::hook::CommandFlag
