#include "support/OS/SpawnAttributes.h"

namespace quillstead::OS {

bool keepOnlyStandardStreams(posix_spawn_file_actions_t& /*actions*/, short& flags) {
  flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
  return true;
}

}  // namespace quillstead::OS
