#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"

#include <chrono>

/// Checks that Codex runs our hooks. It runs only those that its user has reviewed, and silently
/// ignores the others.
namespace quillstead::cli::CodexTrust {

/// Asks the `codex` on PATH. Takes at most `limit`.
Check run(const Context& context, std::chrono::milliseconds limit);

}  // namespace quillstead::cli::CodexTrust
