#include "hook/ParentTag.h"

#include "hook/Harness/Payload.h"

#include <utility>

namespace quillstead::hook::ParentTag {

std::optional<JSON::Object> answer(JSON::ObjectView payload) {
  if (payload.find("tool_name").string() != tool) return std::nullopt;
  const auto toolInput = payload.find("tool_input").object();
  const auto prompt = toolInput ? toolInput->find("prompt").string() : std::nullopt;
  const std::optional<std::string> session = Payload::nonBlank(payload, "session_id");
  if (!prompt || !session) return std::nullopt;

  JSON::Object tagged(*toolInput);
  tagged.set("prompt", JSON::JoinedString{*prompt, "\n\n[qs-parent:" + *session + "]"});
  return JSON::objectOf({{"updated_input", std::move(tagged)}});
}

}  // namespace quillstead::hook::ParentTag
