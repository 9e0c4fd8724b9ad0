#pragma once

#include "hook/Budget.h"
#include "hook/Harness/HarnessAdapter.h"
#include "hook/Lanes/LaneOutcome.h"
#include "hook/MCP/MCPClient.h"
#include "support/JSON/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Asks the server for the cards that match the prompt, and checks every part of the reply before
/// it reaches the harness.
namespace quillstead::hook::MemoryLane {

/// The arguments of "memory_get_relevant", without those that the input lacks.
JSON::Object arguments(const HookInput& input);

// Each function takes a value of the reply's metadata (null when it is missing) and returns its
// content only if it is valid.

/// A string that is not blank and begins with `tag`.
std::optional<std::string> validFenced(JSON::View value, std::string_view tag);
/// A reason of 1 to 32 ASCII letters, digits and hyphens.
std::optional<std::string> validMiss(JSON::View value);
/// An integer from 1 to 999.
std::optional<std::int64_t> validCount(JSON::View value);
/// A list of `count` integers, each at least 1.
std::optional<std::vector<std::int64_t>> validSpans(JSON::View value, std::int64_t count);

/// Calls the tool. Blocks for at most the time left until the deadline.
LaneOutcome run(const HookInput& input, const MCPClient& client, const Deadline& deadline);

}  // namespace quillstead::hook::MemoryLane
