#pragma once

#include "cli/Setup/SettingsText.h"

#include <optional>
#include <string>
#include <string_view>

/// The plugin that lets OpenCode run our hook.
namespace quillstead::cli::OpenCodePlugin {

/// The plugin as it is in integrations/opencode.
extern const std::string_view source;

/// The plugin with the path of the hook in it. `before`: the content of the existing file; absent
/// when there is none. A file that is not our plugin is left alone.
EditOutcome install(const std::optional<std::string>& before, const std::string& hook);

EditOutcome uninstall(const std::string& before);

}  // namespace quillstead::cli::OpenCodePlugin
