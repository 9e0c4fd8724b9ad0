#include "hook/Harness/AnswerFlags.h"

#include "hook/Harness/CommandFlag.h"
#include "hook/Telemetry/Stderr.h"
#include "support/Text/Text.h"

#include <string>

namespace quillstead::hook {

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
