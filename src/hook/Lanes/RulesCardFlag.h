#pragma once

#include "support/OS/Environment.h"

namespace quillstead::hook::RulesCardFlag {

/// Whether the rules are asked for as a card: QUILLSTEAD_RULES_CARD is absent, or "1", "true",
/// "yes" or "on" in any case and with white space around it.
bool isOn(const OS::Environment& environment);

}  // namespace quillstead::hook::RulesCardFlag
