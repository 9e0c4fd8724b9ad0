#include "hook/MCP/MCPBinary.h"

#include "support/OS/Paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <string_view>

namespace quillstead::hook::MCPBinary {

namespace {

constexpr std::string_view serverName = "quillstead-mcp";
constexpr std::string_view defaultSearchPath = "/usr/bin:/bin:/usr/sbin:/sbin";

bool isExecutableFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> onPath(std::string_view name, const OS::Environment& environment) {
  if (name.empty()) return std::nullopt;
  std::string_view rest = environment.value("PATH").value_or(defaultSearchPath);
  for (;;) {
    const std::size_t colon = rest.find(':');
    const std::string_view piece = rest.substr(0, colon);
    std::string candidate(piece.empty() ? "." : piece);
    candidate.append("/").append(name);
    if (isExecutableFile(candidate)) return candidate;
    if (colon == std::string_view::npos) return std::nullopt;
    rest.remove_prefix(colon + 1);
  }
}

std::string besideOwnExecutable(const std::string& ownExecutable) {
  const std::string own = OS::canonicalPath(ownExecutable).value_or(ownExecutable);
  std::string path = own.substr(0, own.rfind('/') + 1);  // empty for a bare name
  path += serverName;
  return path;
}

}  // namespace

std::string resolve(const OS::Environment& environment) {
  const auto chosen = environment.value("QUILLSTEAD_MCP_BIN");
  if (!chosen) return besideOwnExecutable(OS::ownExecutable().value_or(std::string(serverName)));
  if (chosen->find('/') != std::string_view::npos) return std::string(*chosen);
  return onPath(*chosen, environment).value_or(std::string(*chosen));
}

}  // namespace quillstead::hook::MCPBinary
