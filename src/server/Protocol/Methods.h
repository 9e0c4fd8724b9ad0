#pragma once

#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <string_view>

/// The requests that a client may make.
namespace quillstead::server::Methods {

/// The response to a well-formed request, errors included.
JSON::Value answer(JSON::View id, std::string_view method, JSON::ObjectView parameters,
                   const OS::Environment& environment);

/// The protocol version to speak with a client that asks for `wanted`: that one when it is known,
/// else the newest that is.
std::string_view agreedVersion(std::string_view wanted);

}  // namespace quillstead::server::Methods
