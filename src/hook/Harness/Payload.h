#pragma once

#include "support/JSON/Document.h"

#include <optional>
#include <string>
#include <string_view>

/// How every harness's payload is read, whatever its keys.
namespace quillstead::Payload {

/// The payload in `input`; absent when it is not one JSON object.
std::optional<JSON::Document> read(std::string_view input);

/// The text of the key "prompt" as it is, maybe blank; empty when there is none or it is no text.
std::string prompt(JSON::ObjectView payload);

/// `value` when it is a text with more than white space in it, untrimmed; else absent.
std::optional<std::string> nonBlank(JSON::View value);

/// The same for the value of `key`.
std::optional<std::string> nonBlank(JSON::ObjectView payload, std::string_view key);

}  // namespace quillstead::Payload
