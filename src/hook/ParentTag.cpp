#include "hook/ParentTag.h"

#include "hook/Harness/Payload.h"
#include "hook/PretoolAnswer.h"

namespace quillstead::ParentTag {

std::optional<std::string> answer(JSON::ObjectView payload, std::string reused) {
  if (payload.find("tool_name").text() != tool) return std::nullopt;
  const auto toolInput = payload.find("tool_input").object();
  const auto prompt = toolInput ? toolInput->find("prompt").text() : std::nullopt;
  const std::optional<std::string> session = Payload::nonBlank(payload, "session_id");
  if (!prompt || !session) return std::nullopt;

  const std::string tag = "\n\n[qs-parent:" + *session + "]";
  JSON::Object tagged(*toolInput);
  tagged.set("prompt", JSON::JoinedText{*prompt, tag});
  return PretoolAnswer::written(JSON::objectOf({{"updated_input", std::move(tagged)}}),
                                std::move(reused));
}

}  // namespace quillstead::ParentTag
