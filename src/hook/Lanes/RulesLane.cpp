#include "hook/Lanes/RulesLane.h"

#include "hook/Lanes/ReplyNumber.h"

#include <algorithm>

namespace quillstead::RulesLane {

namespace {

std::string cardField(JSON::ObjectView meta) {
  if (meta.find("quillstead/rulesLane").text() != "card") return "card=miss";
  return meta.find("quillstead/card").text() == "pointer" ? "card=pointer" : "card=1";
}

void addRules(MCPReply& reply, LaneOutcome& outcome) {
  const auto kind = reply.meta.find("quillstead/replyKind").text();
  const bool hasText = reply.text && !reply.text->empty();
  if (kind == "empty") {
    outcome.fields.emplace_back("rules=0");
  } else if (kind == "rules" && hasText) {
    outcome.fields.emplace_back("rules=1");
    outcome.block = std::move(reply.text);
    outcome.indexSpan = validSpan(reply.meta.find("quillstead/indexSpan"));
  } else {
    outcome.fields.emplace_back("rules=MISS:no-kind");
  }
}

}  // namespace

JSON::Object arguments(const HookInput& input, const Wanted& wanted) {
  JSON::Object arguments;
  if (input.cwd) arguments.set("cwd", *input.cwd);
  if (input.sessionID) arguments.set("session_id", *input.sessionID);
  if (input.transcriptPath) arguments.set("transcript_path", *input.transcriptPath);
  if (!wanted.card) return arguments;
  arguments.set("card", true);
  if (wanted.cardCeiling) arguments.set("card_ceiling", *wanted.cardCeiling);
  if (wanted.cardHeadCeiling) arguments.set("card_head_ceiling", *wanted.cardHeadCeiling);
  return arguments;
}

std::optional<std::int64_t> validSpan(JSON::View value) { return ReplyNumber::positive(value); }

LaneOutcome run(const HookInput& input, const Wanted& wanted, const MCPClient& client,
                const Deadline& deadline) {
  const Seconds leash = std::min(deadline.leash(), longestLeash);
  MCPReply reply = client.call("rules_get", arguments(input, wanted), leash);
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

}  // namespace quillstead::RulesLane
