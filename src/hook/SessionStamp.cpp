#include "hook/SessionStamp.h"

#include "hook/Harness/Payload.h"
#include "hook/ParentTag.h"

#include <algorithm>
#include <utility>

namespace quillstead::hook::SessionStamp {

std::optional<JSON::Object> answer(JSON::ObjectView payload, Decision /*decision*/) {
  const auto tool = payload.find("tool_name").string();
  if (!tool) return std::nullopt;
  if (*tool == ParentTag::tool) return ParentTag::answer(payload);
  if (std::find(tools.begin(), tools.end(), *tool) == tools.end()) return std::nullopt;

  std::optional<JSON::Object> stamped = Payload::stampedInput(payload, key, "session_id");
  if (!stamped) return std::nullopt;
  return JSON::objectOf({{"updated_input", *std::move(stamped)}});
}

}  // namespace quillstead::hook::SessionStamp
