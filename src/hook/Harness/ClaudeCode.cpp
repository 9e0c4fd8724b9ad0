#include "hook/Harness/ClaudeCode.h"

#include "hook/Harness/Payload.h"
#include "support/JSON/Writer.h"

#include <utility>

namespace quillstead::hook {

std::optional<HookInput> ClaudeCodeAdapter::parse(std::string_view data) const {
  const std::optional<JSON::Document> payload = Payload::read(data);
  // Cursor can run Claude Code's hooks too. Cursor's own hook answers such a payload.
  if (!payload || payload->object().find("cursor_version").exists()) return std::nullopt;
  return ClaudeCode::input(payload->object());
}

std::string ClaudeCodeAdapter::envelope(std::string text, std::string_view event) const {
  return ClaudeCode::envelope(std::move(text), event);
}

namespace ClaudeCode {

HookInput input(JSON::ObjectView payload) {
  return {.prompt = Payload::prompt(payload),
          .cwd = Payload::nonBlank(payload, "cwd"),
          .sessionID = Payload::nonBlank(payload, "session_id"),
          .transcriptPath = Payload::nonBlank(payload, "transcript_path")};
}

std::string envelope(std::string text, std::string_view event) {
  return JSON::write(
      JSON::objectOf(
          {{"hookSpecificOutput",
            JSON::objectOf({{"hookEventName", event}, {"additionalContext", std::move(text)}})}}),
      JSON::Slashes::escaped);
}

}  // namespace ClaudeCode
}  // namespace quillstead::hook
