#include "cli/Places.h"
#include "server/UserPlaces.h"

namespace quillstead::cli {

std::string installedLog(const std::string& home, const std::string& /*stateDirectory*/) {
  return server::UserPlaces::joined(home, "Library/Logs/quillstead-hook.log");
}

bool isInstalledLogNamed() { return false; }

}  // namespace quillstead::cli
