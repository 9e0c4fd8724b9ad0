#include "hook/Harness/Cursor.h"

#include "hook/Harness/Payload.h"
#include "support/JSON/Writer.h"

namespace quillstead::hook {

namespace {

std::optional<std::string> firstWorkspaceRoot(JSON::View value) {
  for (const JSON::View root : value.elements()) {
    if (auto path = Payload::nonBlank(root)) return path;
  }
  return std::nullopt;
}

}  // namespace

std::optional<HookInput> CursorAdapter::parse(std::string_view data) const {
  const std::optional<JSON::Document> document = Payload::read(data);
  if (!document) return std::nullopt;
  const JSON::ObjectView payload = document->object();
  return HookInput{.prompt = Payload::prompt(payload),
                   .cwd = firstWorkspaceRoot(payload.find("workspace_roots")),
                   .sessionID = Payload::nonBlank(payload, "session_id"),
                   .transcriptPath = Payload::nonBlank(payload, "transcript_path")};
}

std::string CursorAdapter::envelope(std::string text, std::string_view /*event*/) const {
  return JSON::write(JSON::objectOf({{"continue", true}, {"additional_context", std::move(text)}}),
                     JSON::Slashes::escaped);
}

}  // namespace quillstead::hook
