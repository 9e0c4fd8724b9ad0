#pragma once

#include "hook/Harness/HarnessAdapter.h"

#include <array>
#include <span>
#include <string_view>

// What the command line may change in an answer. A value that is not known changes nothing, and
// standard error says so.
namespace quillstead::hook {

namespace EventFlag {

/// The usual event.
inline constexpr std::string_view prompt = "UserPromptSubmit";

/// The events that an answer can name.
inline constexpr std::array<std::string_view, 3> knownNames{prompt, "SubagentStart",
                                                            "SessionStart"};

/// What `--event` says that the harness calls the moment; the usual event when it says nothing.
std::string_view parse(std::span<char* const> arguments);

}  // namespace EventFlag

/// What an answer says of a stamped call besides its new input.
enum class Decision { none, allow };

namespace DecisionFlag {

/// What `--decision` says; none for an adapter that takes no decision.
Decision parse(std::span<char* const> arguments, const HarnessAdapter& adapter);

}  // namespace DecisionFlag
}  // namespace quillstead::hook
