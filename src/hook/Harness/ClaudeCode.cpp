#include "hook/Harness/ClaudeCode.h"

#include "hook/Harness/Payload.h"
#include "hook/Harness/UserPromptSubmit.h"

namespace quillstead {

std::optional<HookInput> ClaudeCodeAdapter::parse(std::string_view data) const {
  const std::optional<JSON::Document> payload = Payload::read(data);
  // Cursor can run Claude Code's hooks; such a payload is Cursor's own hook's to answer.
  if (!payload || payload->object().find("cursor_version").isThere()) return std::nullopt;
  return UserPromptSubmit::input(payload->object());
}

std::string ClaudeCodeAdapter::envelope(std::string text) const {
  return UserPromptSubmit::envelope(std::move(text));
}

}  // namespace quillstead
