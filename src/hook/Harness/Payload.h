#pragma once

#include "support/JSON/Document.h"
#include "support/JSON/Value.h"

#include <optional>
#include <string>
#include <string_view>

/// How every harness's payload is read, whatever its keys.
namespace quillstead::hook::Payload {

/// The payload in `input`; absent when it is not one JSON object.
std::optional<JSON::Document> read(std::string_view input);

/// The string of the key "prompt" as it is, maybe blank; empty when there is none or it is no
/// string.
std::string prompt(JSON::ObjectView payload);

/// `value` when it is a string with more than white space in it, untrimmed; else absent.
std::optional<std::string> nonBlank(JSON::View value);

/// The same for the value of `key`.
std::optional<std::string> nonBlank(JSON::ObjectView payload, std::string_view key);

/// The call's "tool_input" with `key` set to the payload's `identity`, whatever the agent put
/// there; absent when the input is no object or the identity is blank.
std::optional<JSON::Object> stampedInput(JSON::ObjectView payload, std::string_view key,
                                         std::string_view identity);

}  // namespace quillstead::hook::Payload
