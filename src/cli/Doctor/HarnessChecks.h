#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"
#include "cli/Doctor/ConfiguredHooks.h"
#include "cli/Places.h"
#include "hook/Budget.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Checks that one harness is set up, and that the commands in its settings work.
namespace quillstead::cli::HarnessChecks {

/// The checks "<harness>.hooks", ".server", ".run" and ".double", in that order. Starts no program
/// after the deadline.
std::vector<Check> run(const std::string& harness, const Context& context, const Programs& programs,
                       const hook::Deadline& deadline);

}  // namespace quillstead::cli::HarnessChecks
