#include "hook/Lanes/RulesCardFlag.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <string>

namespace quillstead::hook::RulesCardFlag {

bool isOn(const OS::Environment& environment) {
  std::string value(Text::trimmed(environment.value("QUILLSTEAD_RULES_CARD").value_or("1")));
  std::transform(value.begin(), value.end(), value.begin(), [](char character) {
    const bool isUpperCase = character >= 'A' && character <= 'Z';
    return isUpperCase ? static_cast<char>(character - 'A' + 'a') : character;
  });
  return value == "1" || value == "true" || value == "yes" || value == "on";
}

}  // namespace quillstead::hook::RulesCardFlag
