#include "hook/Lanes/RulesLane.h"

#include "contract/Contract.h"

#include <algorithm>

namespace quillstead::hook::RulesLane {

namespace {

std::string cardField(JSON::ObjectView meta) {
  if (meta.find(contract::Meta::rulesLane).string() != contract::asCard) return "card=miss";
  return meta.find(contract::Meta::card).string() == contract::pointer ? "card=pointer" : "card=1";
}

void addRules(MCPReply& reply, LaneOutcome& outcome) {
  const auto kind = reply.meta.find(contract::Meta::replyKind).string();
  const bool hasText = reply.text && !reply.text->empty();
  if (kind == contract::ReplyKind::empty) {
    outcome.fields.emplace_back("rules=0");
  } else if (kind == contract::ReplyKind::rules && hasText) {
    outcome.fields.emplace_back("rules=1");
    outcome.block = std::move(reply.text);
    outcome.indexSpan = validSpan(reply.meta.find(contract::Meta::indexSpan));
  } else {
    outcome.fields.emplace_back("rules=MISS:no-kind");
  }
}

}  // namespace

JSON::Object arguments(const HookInput& input, const Wanted& wanted) {
  JSON::Object arguments;
  if (input.cwd) arguments.set(contract::Argument::cwd, *input.cwd);
  if (input.sessionID) arguments.set(contract::Argument::sessionID, *input.sessionID);
  if (input.transcriptPath)
    arguments.set(contract::Argument::transcriptPath, *input.transcriptPath);
  if (!wanted.card) return arguments;
  arguments.set(contract::Argument::card, true);
  if (wanted.cardCeiling) arguments.set(contract::Argument::cardCeiling, *wanted.cardCeiling);
  if (wanted.cardHeadCeiling)
    arguments.set(contract::Argument::cardHeadCeiling, *wanted.cardHeadCeiling);
  return arguments;
}

std::optional<std::int64_t> validSpan(JSON::View value) { return ReplyNumber::positive(value); }

LaneOutcome run(const HookInput& input, const Wanted& wanted, const MCPClient& client,
                const Deadline& deadline) {
  const Seconds leash = std::min(deadline.leash(), longestLeash);
  MCPReply reply = client.call(contract::Tool::rulesGet, arguments(input, wanted), leash);
  LaneOutcome outcome;
  if (reply.miss) {
    outcome.fields.push_back("rules=MISS:" + std::string(*reply.miss));
    outcome.declineFast = reply.declineFast;
    return outcome;
  }
  if (wanted.card) outcome.fields.push_back(cardField(reply.meta));
  addRules(reply, outcome);
  return outcome;
}

}  // namespace quillstead::hook::RulesLane
