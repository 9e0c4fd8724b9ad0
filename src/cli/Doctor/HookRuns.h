#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"
#include "cli/Doctor/ConfiguredHooks.h"
#include "hook/Budget.h"

#include <string>

/// Checks that the commands in a harness's settings work.
namespace quillstead::cli::HookRuns {

/// The check "<harness>.run": runs each command as the harness would, with a payload of that
/// harness, and asks each program for its version.
Check run(const std::string& harness, const ConfiguredHooks& configured, const Context& context,
          const hook::Deadline& deadline);

}  // namespace quillstead::cli::HookRuns
