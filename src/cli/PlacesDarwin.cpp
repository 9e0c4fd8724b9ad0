#include "cli/Places.h"

namespace quillstead::cli {

std::string installedLog(const std::string& home, const std::string& /*stateDirectory*/) {
  return home + "/Library/Logs/quillstead-hook.log";
}

bool isInstalledLogNamed() { return false; }

}  // namespace quillstead::cli
