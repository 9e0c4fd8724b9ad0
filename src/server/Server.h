#pragma once

#include "support/OS/Environment.h"

/// The memory server: requests come in on one descriptor, one a line, answers go out on another.
namespace quillstead::server::Server {

/// Answers until the input ends and every answer is written; gives the process's exit status, 0
/// unless the input could not be read or an answer not be written.
int run(int input, int output, const OS::Environment& environment);

}  // namespace quillstead::server::Server
