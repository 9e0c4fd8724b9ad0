#pragma once

#include "cli/Doctor/ConfiguredHooks.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

/// Where a harness has the hook look for memory, and where the server: what the agent notes in one
/// place does not come back from another.
namespace quillstead::cli::MemoryHome {

/// QUILLSTEAD_HOME for the hooks: as their commands or the settings set it, else as it is here;
/// empty when nobody sets it.
std::string ofHooks(const ConfiguredHooks& configured, const OS::Environment& environment);

/// Likewise for the server, whose entry is in a file of this content: what it says there, else what
/// the settings say, else as it is here.
std::string ofServer(std::string_view harness, const std::optional<std::string>& content,
                     const ConfiguredHooks& configured, const OS::Environment& environment);

}  // namespace quillstead::cli::MemoryHome
