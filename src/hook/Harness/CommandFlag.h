#pragma once

#include "hook/Harness/HarnessAdapter.h"

#include <array>
#include <optional>
#include <span>
#include <string_view>

/// The flags of the command line, but for those of the harness and the slot.
namespace quillstead::hook {

namespace CommandFlag {

/// The value of `flag`, given as the next argument or after "=". Only the first occurrence of the
/// flag counts. Absent when the flag is not given, or its value is missing or empty.
std::optional<std::string_view> value(std::string_view flag, std::span<char* const> arguments);

}  // namespace CommandFlag

// Two flags change an answer. An unknown value changes nothing, and a message on standard error
// says so.

namespace EventFlag {

/// The usual event.
inline constexpr std::string_view prompt = "UserPromptSubmit";

/// The events that an answer can name.
inline constexpr std::array<std::string_view, 3> knownNames{prompt, "SubagentStart",
                                                            "SessionStart"};

/// The event that `--event` names; the usual event when it is not given.
std::string_view parse(std::span<char* const> arguments);

}  // namespace EventFlag

/// What the answer to a stamped call contains besides the new input.
enum class Decision { none, allow };

namespace DecisionFlag {

/// The value of `--decision`; none for an adapter that takes no decision.
Decision parse(std::span<char* const> arguments, const HarnessAdapter& adapter);

}  // namespace DecisionFlag
}  // namespace quillstead::hook
