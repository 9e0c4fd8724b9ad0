#pragma once

#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <functional>
#include <string>
#include <string_view>

/// How the server responds to a client, line by line. It remembers nothing between lines, so that a
/// client may send everything at once or take its time.
namespace quillstead::server::Protocol {

/// Takes the next piece of a response; false when nothing more can be written.
using Sink = std::function<bool(std::string_view)>;

/// Hands the response to one line, without a line end, to `write`; nothing when the line wants
/// none: a notification, a response, nothing but blanks. False when `write` was.
bool respond(std::string_view line, const OS::Environment& environment, const Sink& write);

/// The response to a line that was too long to be kept.
std::string responseToTooLongLine();

}  // namespace quillstead::server::Protocol
