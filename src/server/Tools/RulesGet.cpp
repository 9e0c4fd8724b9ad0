#include "server/Tools/RulesGet.h"

#include "server/Index/Index.h"
#include "server/Rules/Rules.h"
#include "server/Rules/RulesCard.h"

#include <cstdint>
#include <utility>

namespace quillstead::RulesGet {

namespace {

/// More titles than an index of ordinary size can hold.
constexpr std::size_t mostTitles = 1'000;

}  // namespace

ToolOutcome run(Arguments& arguments, const OS::Environment& environment) {
  const bool asCard = arguments.flag("card");
  RulesCard::Ceilings ceilings{.block = arguments.count("card_ceiling"),
                               .head = arguments.count("card_head_ceiling")};
  const Scope scope = arguments.scope(environment);
  if (arguments.flaw()) return BadArguments{*arguments.flaw()};
  if (!asCard) ceilings = {};

  const std::string rules = Rules::read(scope);
  Index index(scope, environment);
  RulesCard::Card card = RulesCard::made(rules, index.titles(mostTitles), ceilings);

  ToolReply reply{.text = std::move(card.block.text), .meta = {}};
  reply.meta.set("quillstead/replyKind", reply.text.empty() ? "empty" : "rules");
  if (card.block.indexSpan) {
    reply.meta.set("quillstead/indexSpan", static_cast<std::int64_t>(*card.block.indexSpan));
  }
  if (asCard) {
    reply.meta.set("quillstead/rulesLane", "card");
    reply.meta.set("quillstead/card", RulesCard::nameOf(card.kind));
  }
  if (reply.text.empty()) reply.text = "There are no rules and no cards to show.";
  return reply;
}

}  // namespace quillstead::RulesGet
