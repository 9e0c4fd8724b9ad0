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
  constexpr std::string_view place = "\"CONTEXT\"";
  std::string document = form;
  return document.replace(document.find(place), place.size(), jsonString(context));
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
  static const std::vector<Harness> all = [] {
    std::vector<Harness> known;
    for (const HarnessFacts& facts : harnessFacts()) known.push_back({facts});
    return known;
  }();
  return all;
}

const Harness& harness(std::string_view name) {
  for (const Harness& known : harnesses()) {
    if (known.name == name) return known;
  }
  throw std::invalid_argument("no such harness");
}

}  // namespace quillstead
