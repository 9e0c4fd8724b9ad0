#pragma once

#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

/// What the server answers to a client, line by line. It remembers nothing between lines, so that a
/// client may send everything at once or take its time.
namespace quillstead::Protocol {

/// The answer to one line, without a line end; absent when the line wants none: a notification, a
/// response, nothing but blanks.
std::optional<std::string> answer(std::string_view line, const OS::Environment& environment);

/// The answer to a line that was too long to be kept.
std::string answerToTooLongLine();

}  // namespace quillstead::Protocol
