#pragma once

#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <functional>
#include <string>
#include <string_view>

/// What the server answers to a client, line by line. It remembers nothing between lines, so that a
/// client may send everything at once or take its time.
namespace quillstead::server::Protocol {

/// Takes the next piece of an answer; false when nothing more can be written.
using Sink = std::function<bool(std::string_view)>;

/// Hands the answer to one line, without a line end, to `write`; nothing when the line wants none:
/// a notification, a response, nothing but blanks. False when `write` was.
bool answer(std::string_view line, const OS::Environment& environment, const Sink& write);

/// The answer to a line that was too long to be kept.
std::string answerToTooLongLine();

}  // namespace quillstead::server::Protocol
