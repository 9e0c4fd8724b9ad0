#pragma once

#include "hook/Budget.h"
#include "hook/Harness/HarnessAdapter.h"
#include "hook/Lanes/LaneOutcome.h"
#include "hook/MCP/MCPClient.h"
#include "support/JSON/Value.h"

#include <cstdint>
#include <optional>

/// Asks the server for the user's rules, whole or as a short card.
namespace quillstead::hook::RulesLane {

/// The longest time that the rules may take, so that time is left for the memory.
inline constexpr Seconds longestLeash{1.5};

/// Which form of the rules to ask for.
struct Wanted {
  bool card = false;                            ///< a short card instead of the full rules
  std::optional<std::int64_t> cardCeiling;      ///< bytes of the whole card; only sent for a card
  std::optional<std::int64_t> cardHeadCeiling;  ///< bytes of its head; only sent for a card
};

/// The arguments of "rules_get", without those that are absent. The prompt is not sent.
JSON::Object arguments(const HookInput& input, const Wanted& wanted);

/// An integer of at least 1; absent for anything else, a missing value included.
std::optional<std::int64_t> validSpan(JSON::View value);

/// Calls the tool. Blocks for at most the time left until the deadline, and at most `longestLeash`.
LaneOutcome run(const HookInput& input, const Wanted& wanted, const MCPClient& client,
                const Deadline& deadline);

}  // namespace quillstead::hook::RulesLane
