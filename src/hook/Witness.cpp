#include "hook/Witness.h"

#include "hook/Telemetry/Stderr.h"
#include "support/OS/Paths.h"

#include <unistd.h>

#include <array>
#include <climits>

namespace quillstead::hook::Witness {

namespace {

/// `path` as it is when it leads through a directory that this user may not search.
std::string canonical(const std::string& path) { return OS::canonicalPath(path).value_or(path); }

std::string currentDirectory() {
  std::array<char, PATH_MAX> path;
  return getcwd(path.data(), path.size()) ? path.data() : "";
}

}  // namespace

void warnIfCwdWitnessesDisagree(const std::optional<std::string>& payloadCwd) {
  if (!payloadCwd) return;
  const std::string current = currentDirectory();
  if (current.empty()) return;

  const std::string own = canonical(current);
  if (canonical(*payloadCwd) == own) return;
  Stderr::line("WARNING — the harness says cwd=" + *payloadCwd + " but this process is in " + own +
               ". Both lanes are scoped by the former; if they name different projects, this "
               "prompt may have been answered for the wrong one.");
}

}  // namespace quillstead::hook::Witness
