#pragma once

#include "hook/Harness/CommandFlag.h"
#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>

/// Answers at the pre-tool slot: reads a payload, lets a stamp make the answer, and prints it.
/// Nothing is logged.
namespace quillstead::hook::PretoolAnswer {

/// Makes the answer to a call: the call's input and what the stamp adds. The answer may hold views
/// into the payload. Absent when the call goes through unchanged.
using Stamp = std::optional<JSON::Object> (*)(JSON::ObjectView payload, Decision decision);

/// Puts the belt on, reads the payload, prints the answer, or `{}` to let the call through, and
/// ends the process with status 0.
[[noreturn]] void serve(const OS::Environment& environment, Stamp stamp, Decision decision);

/// The answer to the payload in `input`; `{}` when there is nothing to stamp. It reuses the memory
/// of `input`. Compact, with slashes not escaped.
std::string document(std::string input, Stamp stamp, Decision decision);

}  // namespace quillstead::hook::PretoolAnswer
