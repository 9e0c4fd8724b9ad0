#include "support/OS/SpawnAttributes.h"

#include <unistd.h>

namespace quillstead::OS {

bool keepOnlyStandardStreams(posix_spawn_file_actions_t& actions, short& /*flags*/) {
  return posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0;
}

}  // namespace quillstead::OS
