#pragma once

#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <optional>
#include <string>

/// What the two stamps at the pre-tool slot share: one sequence from the payload to the answer.
namespace quillstead::PretoolAnswer {

/// Gives the answer document to a payload's bytes, in whose memory it may be written; absent when
/// the call is to be let through as it is.
using AnswerTo = std::optional<std::string> (*)(std::string input);

/// Puts the belt on, reads the payload, and prints the answer, or `{}` to let the call through.
/// Returns the exit status, always 0. Writes no telemetry and nothing to standard error.
std::int32_t serve(const OS::Environment& environment, AnswerTo answerTo);

/// `document` as it goes out: compact, slashes as they are, in the memory of `reused`.
std::string written(JSON::Object document, std::string reused);

}  // namespace quillstead::PretoolAnswer
