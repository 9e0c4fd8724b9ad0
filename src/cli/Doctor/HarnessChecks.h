#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"
#include "cli/Setup/Programs.h"
#include "hook/Budget.h"

#include <string>
#include <vector>

/// Whether one harness is set up, and whether what it is told to run works.
namespace quillstead::cli::HarnessChecks {

/// The checks "<harness>.hooks", ".server", ".run" and ".double", in that order. Starts nothing
/// more when the deadline is over.
std::vector<Check> run(const std::string& harness, const Context& context, const Programs& programs,
                       const hook::Deadline& deadline);

}  // namespace quillstead::cli::HarnessChecks
