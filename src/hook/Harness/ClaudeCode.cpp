#include "hook/Harness/ClaudeCode.h"

#include "hook/Harness/Payload.h"
#include "hook/Harness/UserPromptSubmit.h"

namespace quillstead {

std::optional<HookInput> ClaudeCodeAdapter::parse(std::string_view data) const {
  const std::optional<JSON::Object> payload = Payload::read(data);
  // Cursor can run Claude Code's hooks; such a payload is Cursor's own hook's to answer.
  if (!payload || payload->find("cursor_version")) return std::nullopt;
  return UserPromptSubmit::input(*payload);
}

std::string ClaudeCodeAdapter::envelope(std::string text) const {
  return UserPromptSubmit::envelope(std::move(text));
}

}  // namespace quillstead
