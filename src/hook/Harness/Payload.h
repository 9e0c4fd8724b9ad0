#pragma once

#include "support/JSON/Reader.h"
#include "support/JSON/Value.h"

#include <optional>
#include <string>
#include <string_view>

/// Reading that is the same for every harness's payload.
namespace quillstead::hook::Payload {

/// The payload in `input`; absent when it is not one JSON object.
std::optional<JSON::Document> read(std::string_view input);

/// The string at the key "prompt", unchanged; empty when it is missing or not a string.
std::string prompt(JSON::ObjectView payload);

/// `value`, untrimmed, when it is a string that is not only white space; else absent.
std::optional<std::string> nonBlank(JSON::View value);

/// The same for the value of `key`.
std::optional<std::string> nonBlank(JSON::ObjectView payload, std::string_view key);

/// The call's "tool_input" with `key` set to the payload's `identity`, which replaces any value
/// from the agent. Absent when the input is not an object or the identity is blank.
std::optional<JSON::Object> stampedInput(JSON::ObjectView payload, std::string_view key,
                                         std::string_view identity);

}  // namespace quillstead::hook::Payload
