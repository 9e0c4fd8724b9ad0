#include "hook/ParentTag.h"

#include "hook/Harness/Payload.h"
#include "hook/PretoolAnswer.h"

namespace quillstead::ParentTag {

std::optional<std::string> answer(JSON::Object payload, std::string reused) {
  if (!JSON::isText(payload.find("tool_name"), tool)) return std::nullopt;
  JSON::Object* const toolInput = JSON::objectOf(payload.find("tool_input"));
  JSON::Value* const promptValue = toolInput ? toolInput->find("prompt") : nullptr;
  std::string* const prompt = promptValue ? promptValue->text() : nullptr;
  const std::optional<std::string> session = Payload::nonBlank(payload, "session_id");
  if (!prompt || !session) return std::nullopt;

  *prompt += "\n\n[qs-parent:" + *session + "]";
  return PretoolAnswer::written(JSON::objectOf({{"updated_input", std::move(*toolInput)}}),
                                std::move(reused));
}

}  // namespace quillstead::ParentTag
