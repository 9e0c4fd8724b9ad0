#pragma once

#include <spawn.h>

namespace quillstead::OS {

/// Asks that a spawned child keeps its standard streams and no other descriptor, not even one that
/// was left open by the process that started us. False when the request could not be recorded.
bool keepOnlyStandardStreams(posix_spawn_file_actions_t& actions, short& flags);

}  // namespace quillstead::OS
