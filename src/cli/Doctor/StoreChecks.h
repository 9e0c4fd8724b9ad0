#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"

#include <string>
#include <vector>

/// Checks the stores: their size, and what is left out.
namespace quillstead::cli::StoreChecks {

/// The personal store, and the store of the current directory's project. `harnesses`: those whose
/// budgets the rules have to fit.
Check personal(const Context& context, const std::vector<std::string>& harnesses);
Check project(const Context& context, const std::vector<std::string>& harnesses);

}  // namespace quillstead::cli::StoreChecks
