#pragma once

#include "support/OS/Environment.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <string>

namespace quillstead::hook::RulesCardFlag {

/// Whether the rules are asked for as a card: QUILLSTEAD_RULES_CARD is absent, or "1", "true",
/// "yes" or "on" in any case and with white space around it.
inline bool isOn(const OS::Environment& environment) {
  std::string value(Text::trimmed(environment.value("QUILLSTEAD_RULES_CARD").value_or("1")));
  std::transform(value.begin(), value.end(), value.begin(), [](char character) {
    const bool isUpperCase = character >= 'A' && character <= 'Z';
    return isUpperCase ? static_cast<char>(character - 'A' + 'a') : character;
  });
  return value == "1" || value == "true" || value == "yes" || value == "on";
}

}  // namespace quillstead::hook::RulesCardFlag
