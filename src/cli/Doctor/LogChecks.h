#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"

#include <optional>
#include <string>

/// Checks the hook's log.
namespace quillstead::cli::LogChecks {

/// Where it is, and whether it can be written. `named`: the log that Claude Code's settings name;
/// absent when they name none.
Check file(const Context& context, const std::optional<std::string>& named);

/// Problems in its last 200 lines.
Check recent(const Context& context, const std::optional<std::string>& named);

}  // namespace quillstead::cli::LogChecks
