#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "support/JSON/Value.h"

#include <string>

/// The payload and the answer of the prompt hook that Claude Code defined and Codex took over.
namespace quillstead::UserPromptSubmit {

HookInput input(JSON::ObjectView payload);

/// `{"hookSpecificOutput":{"hookEventName":"UserPromptSubmit","additionalContext":<text>}}`
std::string envelope(std::string text);

}  // namespace quillstead::UserPromptSubmit
