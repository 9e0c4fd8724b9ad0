#include "Harness.h"

#include "JSONText.h"

#include <stdexcept>

namespace quillstead {

namespace {

std::string textMember(std::string_view key, std::string_view text) {
  return jsonString(key) + ":" + jsonString(text);
}

std::string object(const std::vector<std::string>& members) {
  std::string text;
  for (const std::string& member : members) text += (text.empty() ? "" : ",") + member;
  return "{" + text + "}";
}

}  // namespace

std::string Harness::payload(const Said& said) const {
  std::vector<std::string> members{textMember("prompt", said.prompt)};
  if (said.directory && hasRoots) {
    members.push_back(R"("workspace_roots":[)" + jsonString(*said.directory) + "]");
  } else if (said.directory) {
    members.push_back(textMember("cwd", *said.directory));
  }
  if (said.session) members.push_back(textMember(sessionKey, *said.session));
  if (said.transcript) members.push_back(textMember("transcript_path", *said.transcript));
  return object(members);
}

std::string Harness::envelope(std::string_view context) const {
  const std::string text = jsonString(context);
  if (name == "opencode") return R"({"context":)" + text + "}";
  if (name == "cursor") return R"({"continue":true,"additional_context":)" + text + "}";
  return R"({"hookSpecificOutput":{"hookEventName":"UserPromptSubmit","additionalContext":)" +
         text + "}}";
}

std::vector<std::string> Harness::placeArguments(const Said& said) const {
  std::vector<std::string> members;
  if (said.directory) members.push_back(textMember("cwd", *said.directory));
  if (said.session) members.push_back(textMember("session_id", *said.session));
  if (said.transcript && hasTranscript) {
    members.push_back(textMember("transcript_path", *said.transcript));
  }
  return members;
}

std::string Harness::rulesArguments(const Said& said, bool card) const {
  std::vector<std::string> members = placeArguments(said);
  if (card) members.emplace_back(R"("card":true)");
  if (card && cardCeiling) {
    members.push_back(R"("card_ceiling":)" + std::to_string(*cardCeiling));
  }
  if (card && cardHeadCeiling) {
    members.push_back(R"("card_head_ceiling":)" + std::to_string(*cardHeadCeiling));
  }
  return object(members);
}

std::string Harness::memoryArguments(const Said& said) const {
  std::vector<std::string> members = placeArguments(said);
  members.push_back(textMember("prompt", said.prompt));
  return object(members);
}

const std::vector<Harness>& harnesses() {
  static const std::vector<Harness> all{{.name = "claude-code",
                                         .silence = std::nullopt,
                                         .budget = 10'000,
                                         .cardCeiling = std::nullopt,
                                         .cardHeadCeiling = 10'000,
                                         .sessionKey = "session_id",
                                         .hasRoots = false,
                                         .hasTranscript = true},
                                        {.name = "codex",
                                         .silence = R"({"continue":true})",
                                         .budget = 30'000,
                                         .cardCeiling = std::nullopt,
                                         .cardHeadCeiling = std::nullopt,
                                         .sessionKey = "session_id",
                                         .hasRoots = false,
                                         .hasTranscript = true},
                                        {.name = "cursor",
                                         .silence = R"({"continue":true})",
                                         .budget = 8'000,
                                         .cardCeiling = 5'000,
                                         .cardHeadCeiling = std::nullopt,
                                         .sessionKey = "session_id",
                                         .hasRoots = true,
                                         .hasTranscript = true},
                                        {.name = "opencode",
                                         .silence = "{}",
                                         .budget = std::nullopt,
                                         .cardCeiling = std::nullopt,
                                         .cardHeadCeiling = std::nullopt,
                                         .sessionKey = "sessionID",
                                         .hasRoots = false,
                                         .hasTranscript = false}};
  return all;
}

const Harness& harness(std::string_view name) {
  for (const Harness& known : harnesses()) {
    if (known.name == name) return known;
  }
  throw std::invalid_argument("no such harness");
}

}  // namespace quillstead
