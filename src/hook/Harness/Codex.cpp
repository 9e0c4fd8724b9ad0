#include "hook/Harness/Codex.h"

#include "hook/Harness/Payload.h"
#include "hook/Harness/UserPromptSubmit.h"

namespace quillstead {

std::optional<HookInput> CodexAdapter::parse(std::string_view data) const {
  const std::optional<JSON::Document> payload = Payload::read(data);
  if (!payload) return std::nullopt;
  return UserPromptSubmit::input(payload->object());
}

std::string CodexAdapter::envelope(std::string text) const {
  return UserPromptSubmit::envelope(std::move(text));
}

}  // namespace quillstead
