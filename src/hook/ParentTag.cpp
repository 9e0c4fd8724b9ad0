#include "hook/ParentTag.h"

#include "hook/Harness/Payload.h"
#include "hook/PretoolAnswer.h"

namespace quillstead::ParentTag {

std::optional<std::string> answer(JSON::Object payload) {
  if (!JSON::isText(payload.find("tool_name"), tool)) return std::nullopt;
  JSON::Object* const toolInput = PretoolAnswer::objectAt(payload, "tool_input");
  JSON::Value* const promptValue = toolInput ? toolInput->find("prompt") : nullptr;
  std::string* const prompt = promptValue ? promptValue->text() : nullptr;
  const std::optional<std::string> session = Payload::nonBlank(payload, "session_id");
  if (!prompt || !session) return std::nullopt;

  *prompt += "\n\n[qs-parent:" + *session + "]";
  return PretoolAnswer::written(JSON::objectOf({{"updated_input", std::move(*toolInput)}}));
}

}  // namespace quillstead::ParentTag
