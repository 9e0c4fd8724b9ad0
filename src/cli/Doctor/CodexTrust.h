#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"

#include <chrono>

/// Whether Codex runs our hooks: it runs those that its user has reviewed, and says nothing of the
/// others.
namespace quillstead::cli::CodexTrust {

/// Asks the `codex` on PATH. Takes at most `limit`.
Check run(const Context& context, std::chrono::milliseconds limit);

}  // namespace quillstead::cli::CodexTrust
