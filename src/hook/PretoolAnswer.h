#pragma once

#include "hook/Harness/AnswerFlags.h"
#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <optional>
#include <string>

/// Answers the pre-tool slot: a payload is read, a stamp makes the answer of it, the answer is
/// written. Nothing is logged.
namespace quillstead::hook::PretoolAnswer {

/// Makes the answer to a call: its input, with what the stamp adds. The answer may show parts of
/// the payload. Absent when the call is to be let through as it is.
using Stamp = std::optional<JSON::Object> (*)(JSON::ObjectView payload, Decision decision);

/// Puts the belt on, reads the payload, and prints the answer, or `{}` to let the call through.
/// Returns the exit status, always 0.
std::int32_t serve(const OS::Environment& environment, Stamp stamp, Decision decision);

/// The document that answers the payload in `input`, in whose memory it is written; `{}` when there
/// is nothing to stamp. Compact, with slashes as they are.
std::string document(std::string input, Stamp stamp, Decision decision);

}  // namespace quillstead::hook::PretoolAnswer
