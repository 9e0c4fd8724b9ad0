#include "server/Tools/MemoryGetRelevant.h"

#include "contract/Contract.h"
#include "server/Index/Index.h"
#include "server/Recall/Recall.h"
#include "server/Session/SessionMemory.h"
#include "server/Shown.h"
#include "support/Text/Text.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::server::MemoryGetRelevant {

namespace {

/// A harness sends such a prompt itself, when a background task has ended.
bool isFromHarness(std::string_view prompt) {
  return Text::trimmed(prompt).starts_with("<task-notification>");
}

Recall::Block cardsFor(std::string_view prompt, const Scope& scope,
                       const SessionMemory::Caller& caller, const OS::Environment& environment) {
  if (isFromHarness(prompt)) return {};
  Index index = Index::opened(scope, environment, Index::untilCardsAreKnown);
  const auto terms = Words::searchTerms(Shown::withoutOwnBlocks(prompt));
  std::vector<CardPlace> candidates = index.search(terms, Recall::mostCandidates);
  auto session = SessionMemory::of(caller, environment);
  if (session) ShownCards::remove(candidates, *session, scope);
  Recall::Block block = Recall::block(scope, Recall::choose(std::move(candidates)), terms);
  if (session) ShownCards::note(block, *session, scope);
  return block;
}

}  // namespace

ToolReply run(Arguments& arguments, const OS::Environment& environment) {
  const std::optional<std::string> prompt = arguments.anyString(contract::Argument::prompt);
  const std::optional<std::string> cwd = arguments.cwd();
  const SessionMemory::Caller caller = arguments.caller();
  if (arguments.flaw()) return badArguments(*arguments.flaw());
  if (!prompt) return badArguments("prompt must be a string");

  Recall::Block block = cardsFor(*prompt, Scope::find(environment, cwd), caller, environment);
  ToolReply reply;
  if (block.spans.empty()) {
    reply.text = "No card in memory matches.";
    reply.meta.set(contract::Meta::replyKind, contract::ReplyKind::empty);
    return reply;
  }
  JSON::Array spans;
  for (const std::size_t span : block.spans) spans.emplace_back(static_cast<std::int64_t>(span));
  reply.text = std::move(block.text);
  reply.meta.set(contract::Meta::replyKind, contract::ReplyKind::cards);
  reply.meta.set(contract::Meta::cardCount, static_cast<std::int64_t>(spans.size()));
  reply.meta.set(contract::Meta::cardSpans, std::move(spans));
  return reply;
}

}  // namespace quillstead::server::MemoryGetRelevant
