#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"

#include <string>
#include <vector>

/// What there is to remember, and what of it is left out.
namespace quillstead::cli::StoreChecks {

/// The personal store; and the one of the project that the current directory is in. `harnesses`:
/// those whose budgets the rules have to fit.
Check personal(const Context& context, const std::vector<std::string>& harnesses);
Check project(const Context& context, const std::vector<std::string>& harnesses);

}  // namespace quillstead::cli::StoreChecks
