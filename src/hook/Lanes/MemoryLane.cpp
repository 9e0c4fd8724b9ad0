#include "hook/Lanes/MemoryLane.h"

#include "contract/Contract.h"
#include "support/Text/Text.h"

#include <algorithm>

namespace quillstead::hook::MemoryLane {

namespace {

bool isReasonCharacter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '-';
}

void addShortcut(JSON::ObjectView meta, LaneOutcome& outcome) {
  outcome.shortcut = validFenced(meta.find(contract::Meta::shortcut), contract::shortcutTag);
  if (outcome.shortcut) {
    outcome.fields.emplace_back("shortcut=1");
  } else if (const auto reason = validMiss(meta.find(contract::Meta::shortcutMiss))) {
    outcome.fields.push_back("shortcut=MISS:" + *reason);
  }
}

void addCards(MCPReply& reply, LaneOutcome& outcome) {
  const auto kind = reply.meta.find(contract::Meta::replyKind).string();
  if (kind == contract::ReplyKind::empty) {
    outcome.fields.emplace_back("cards=0");
    return;
  }
  const auto count = validCount(reply.meta.find(contract::Meta::cardCount));
  const bool hasText = reply.text && !reply.text->empty();
  if (kind != contract::ReplyKind::cards || !hasText || !count) {
    outcome.fields.emplace_back("cards=MISS:no-kind");
    return;
  }
  outcome.fields.push_back("cards=" + std::to_string(*count));
  outcome.block = std::move(reply.text);
  outcome.cardCount = count;
  outcome.cardSpans = validSpans(reply.meta.find(contract::Meta::cardSpans), *count);
}

}  // namespace

JSON::Object arguments(const HookInput& input) {
  JSON::Object arguments;
  arguments.set(contract::Argument::prompt, input.prompt);
  if (input.cwd) arguments.set(contract::Argument::cwd, *input.cwd);
  if (input.sessionID) arguments.set(contract::Argument::sessionID, *input.sessionID);
  if (input.transcriptPath)
    arguments.set(contract::Argument::transcriptPath, *input.transcriptPath);
  return arguments;
}

std::optional<std::string> validFenced(JSON::View value, std::string_view tag) {
  const auto string = value.string();
  if (!string || Text::isBlank(*string) || !string->starts_with(tag)) return std::nullopt;
  return std::string(*string);
}

std::optional<std::string> validMiss(JSON::View value) {
  constexpr std::size_t longest = 32;
  const auto string = value.string();
  if (!string || string->empty() || string->size() > longest) return std::nullopt;
  if (!std::all_of(string->begin(), string->end(), isReasonCharacter)) return std::nullopt;
  return std::string(*string);
}

std::optional<std::int64_t> validCount(JSON::View value) {
  constexpr std::int64_t most = 999;
  const auto count = ReplyNumber::positive(value);
  return count && *count <= most ? count : std::nullopt;
}

std::optional<std::vector<std::int64_t>> validSpans(JSON::View value, std::int64_t count) {
  const auto list = value.array();
  if (!list || static_cast<std::int64_t>(list->size()) != count) return std::nullopt;
  std::vector<std::int64_t> spans;
  spans.reserve(list->size());
  for (const JSON::View element : *list) {
    const auto span = ReplyNumber::positive(element);
    if (!span) return std::nullopt;
    spans.push_back(*span);
  }
  return spans;
}

LaneOutcome run(const HookInput& input, const MCPClient& client, const Deadline& deadline) {
  MCPReply reply =
      client.call(contract::Tool::memoryGetRelevant, arguments(input), deadline.leash());
  LaneOutcome outcome;
  if (reply.miss) {
    outcome.fields.push_back("cards=MISS:" + std::string(*reply.miss));
    return outcome;
  }
  addShortcut(reply.meta, outcome);
  outcome.justEnded = validFenced(reply.meta.find(contract::Meta::now), contract::nowTag);
  addCards(reply, outcome);
  return outcome;
}

}  // namespace quillstead::hook::MemoryLane
