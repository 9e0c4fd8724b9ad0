#pragma once

#include "cli/Doctor/ConfiguredHooks.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

/// The directories of personal memory that a harness gives to the hook and to the server. If they
/// differ, what the agent writes is not recalled.
namespace quillstead::cli::MemoryHome {

/// QUILLSTEAD_HOME for the hooks: from their commands or the settings, else from our environment;
/// empty when it is not set.
std::string ofHooks(const ConfiguredHooks& configured, const OS::Environment& environment);

/// The same for the server, whose entry is in a file with this content: from the entry, else from
/// the settings, else from our environment.
std::string ofServer(std::string_view harness, const std::optional<std::string>& content,
                     const ConfiguredHooks& configured, const OS::Environment& environment);

}  // namespace quillstead::cli::MemoryHome
