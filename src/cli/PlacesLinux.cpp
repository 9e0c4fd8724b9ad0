#include "cli/Places.h"

namespace quillstead::cli {

std::string installedLog(const std::string& /*home*/, const std::string& stateDirectory) {
  return stateDirectory + "/hook.log";
}

bool isInstalledLogNamed() { return true; }

}  // namespace quillstead::cli
