#include "hook/Harness/CommandFlag.h"

#include "hook/Telemetry/Stderr.h"
#include "support/Text/Text.h"

#include <string>

namespace quillstead::hook {

namespace {

std::optional<std::string_view> unlessEmpty(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return text;
}

}  // namespace

std::optional<std::string_view> CommandFlag::value(std::string_view flag,
                                                   std::span<char* const> arguments) {
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

std::string_view EventFlag::parse(std::span<char* const> arguments) {
  const auto given = CommandFlag::value("--event", arguments);
  if (!given) return knownNames.front();
  for (const std::string_view known : knownNames) {
    if (known == *given) return known;
  }
  Stderr::line("unknown event \"" + std::string(*given) +
               "\" — going on without. Known events: " + Text::joined(knownNames, ", ") + ".");
  return knownNames.front();
}

Decision DecisionFlag::parse(std::span<char* const> arguments, const HarnessAdapter& adapter) {
  const auto given = CommandFlag::value("--decision", arguments);
  if (!given) return Decision::none;
  if (*given != "allow") {
    Stderr::line("unknown decision \"" + std::string(*given) +
                 "\" — going on without. Known decisions: allow.");
    return Decision::none;
  }
  if (adapter.takesDecision()) return Decision::allow;
  Stderr::line("no decision is given to " + std::string(adapter.name()) + " — going on without.");
  return Decision::none;
}

}  // namespace quillstead::hook
