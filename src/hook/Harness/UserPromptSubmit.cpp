#include "hook/Harness/UserPromptSubmit.h"

#include "hook/Harness/Payload.h"
#include "support/JSON/Writer.h"

namespace quillstead::UserPromptSubmit {

HookInput input(JSON::ObjectView payload) {
  return {.prompt = Payload::prompt(payload),
          .cwd = Payload::nonBlank(payload, "cwd"),
          .sessionID = Payload::nonBlank(payload, "session_id"),
          .transcriptPath = Payload::nonBlank(payload, "transcript_path")};
}

std::string envelope(std::string text) {
  return JSON::write(JSON::objectOf({{"hookSpecificOutput",
                                      JSON::objectOf({{"hookEventName", "UserPromptSubmit"},
                                                      {"additionalContext", std::move(text)}})}}),
                     JSON::Slashes::escaped);
}

}  // namespace quillstead::UserPromptSubmit
