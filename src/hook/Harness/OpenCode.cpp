#include "hook/Harness/OpenCode.h"

#include "hook/Harness/Payload.h"
#include "support/JSON/Writer.h"

namespace quillstead::hook {

std::optional<HookInput> OpenCodeAdapter::parse(std::string_view data) const {
  const std::optional<JSON::Document> document = Payload::read(data);
  if (!document) return std::nullopt;
  const JSON::ObjectView payload = document->object();
  return HookInput{.prompt = Payload::prompt(payload),
                   .cwd = Payload::nonBlank(payload, "cwd"),
                   .sessionID = Payload::nonBlank(payload, "sessionID"),
                   .transcriptPath = std::nullopt};
}

std::string OpenCodeAdapter::envelope(std::string text, std::string_view /*event*/) const {
  return JSON::write(JSON::objectOf({{"context", std::move(text)}}), JSON::Slashes::escaped);
}

}  // namespace quillstead::hook
