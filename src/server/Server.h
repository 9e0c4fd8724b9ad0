#pragma once

#include "support/OS/Environment.h"

/// The memory server: requests come in on one descriptor, one a line, responses go out on
/// another.
namespace quillstead::server::Server {

/// Responds until the input ends and every response is written; gives the process's exit status, 0
/// unless the input could not be read or a response not be written.
int run(int input, int output, const OS::Environment& environment);

}  // namespace quillstead::server::Server
