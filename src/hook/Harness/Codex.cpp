#include "hook/Harness/Codex.h"

#include "hook/Harness/ClaudeCode.h"
#include "hook/Harness/Payload.h"

#include <utility>

namespace quillstead::hook {

std::optional<HookInput> CodexAdapter::parse(std::string_view data) const {
  const std::optional<JSON::Document> payload = Payload::read(data);
  if (!payload) return std::nullopt;
  return ClaudeCode::input(payload->object());
}

std::string CodexAdapter::envelope(std::string text, std::string_view event) const {
  return ClaudeCode::envelope(std::move(text), event);
}

}  // namespace quillstead::hook
