#include "server/Tools/RulesGet.h"

#include "contract/Contract.h"
#include "server/Index/Index.h"
#include "server/Rules/Rules.h"
#include "server/Rules/RulesCard.h"
#include "server/Session/SessionMemory.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace quillstead::server::RulesGet {

namespace {

/// The smallest context of a harness that sends no ceiling, and the share of it for rules. A block
/// that is too large for the harness would be dropped whole.
constexpr std::size_t leastContext = 30'000;
constexpr std::size_t ceilingOfCards = 28'000;

constexpr std::string_view pointerToKnownRules =
    "The user's rules, given earlier in this conversation, still hold. (The tool `rules_get` gives "
    "them again.)";

/// Why the tool was called.
struct Wanted {
  bool asCard;
  RulesCard::Ceilings ceilings;
  SessionMemory::Caller caller;
};

Wanted wantedBy(Arguments& arguments) {
  Wanted wanted{.asCard = arguments.flag(contract::Argument::card),
                .ceilings = {.block = arguments.count(contract::Argument::cardCeiling),
                             .head = arguments.count(contract::Argument::cardHeadCeiling)},
                .caller = arguments.caller()};
  if (!wanted.asCard) {
    wanted.ceilings = {};
    wanted.caller = {};  // only a card can be a pointer
  } else if (!wanted.ceilings.block && !wanted.ceilings.head) {
    wanted.ceilings.block = ceilingOfCards;
  }
  return wanted;
}

/// The bytes left for cards beside rules of `size` bytes, in the harness that sent these ceilings.
std::size_t roomBeside(std::size_t size, const RulesCard::Ceilings& ceilings) {
  std::size_t context = leastContext;
  if (ceilings.block && *ceilings.block != ceilingOfCards) context = *ceilings.block;
  if (ceilings.head) context = std::min(context, *ceilings.head);
  const std::size_t taken = size + contract::MemoryFence::gap.size();
  return context > taken ? context - taken : 0;
}

/// A pointer, when this session has already seen these rules; else absent.
std::optional<RulesCard::Card> pointerFor(std::string_view rules, const Wanted& wanted,
                                          const OS::Environment& environment) {
  auto session = SessionMemory::of(wanted.caller, environment);
  if (!session || !session->knowsRules(rules)) return std::nullopt;
  RulesCard::Card card{.kind = RulesCard::Kind::pointer,
                       .block = RulesBlock::fenced(rules.empty() ? "" : pointerToKnownRules, {})};
  session->pointerShown(roomBeside(card.block.text.size(), wanted.ceilings));
  session->keep();
  return card;
}

RulesCard::Card wholeFor(std::string_view rules, const Scope& scope, const Wanted& wanted,
                         const OS::Environment& environment) {
  Index index = Index::opened(scope, environment, Index::withWhatIsKnown);
  RulesCard::Card card =
      RulesCard::made(rules, index.titles(RulesBlock::enoughOfTitles), wanted.ceilings,
                      scope.projectLeftOut ? projectLeftOutNote : "");
  const bool told = card.kind == RulesCard::Kind::whole || card.kind == RulesCard::Kind::cut;
  if (auto session = told ? SessionMemory::of(wanted.caller, environment) : std::nullopt) {
    session->rulesShown(rules, roomBeside(card.block.text.size(), wanted.ceilings));
    session->keep();
  }
  return card;
}

}  // namespace

ToolReply run(Arguments& arguments, const OS::Environment& environment) {
  const Wanted wanted = wantedBy(arguments);
  const std::optional<std::string> cwd = arguments.cwd();
  if (arguments.flaw()) return badArguments(*arguments.flaw());

  const Scope scope = Scope::find(environment, cwd);
  const std::string rules = Rules::read(scope);
  std::optional<RulesCard::Card> pointer = pointerFor(rules, wanted, environment);
  RulesCard::Card card =
      pointer ? std::move(*pointer) : wholeFor(rules, scope, wanted, environment);

  ToolReply reply{.text = std::move(card.block.text), .meta = {}};
  reply.meta.set(contract::Meta::replyKind,
                 reply.text.empty() ? contract::ReplyKind::empty : contract::ReplyKind::rules);
  if (card.block.indexSpan) {
    reply.meta.set(contract::Meta::indexSpan, static_cast<std::int64_t>(*card.block.indexSpan));
  }
  if (wanted.asCard) {
    reply.meta.set(contract::Meta::rulesLane, contract::asCard);
    reply.meta.set(contract::Meta::card, RulesCard::nameOf(card.kind));
  }
  if (reply.text.empty()) reply.text = "There are no rules and no cards to show.";
  return reply;
}

}  // namespace quillstead::server::RulesGet
