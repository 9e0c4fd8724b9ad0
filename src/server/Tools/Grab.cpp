#include "server/Tools/Grab.h"

#include "contract/Contract.h"
#include "server/Index/Index.h"
#include "server/Shown.h"
#include "server/Store/Card.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Text.h"

#include <utility>
#include <variant>

namespace quillstead::server::Grab {

namespace {

struct FoundCard {
  CardPlace place;
  std::string text;
};

/// The result of looking for a card in the stores.
struct Found {
  std::vector<FoundCard> cards;      ///< at most one of each store
  std::optional<ToolReply> refusal;  ///< why a card that is there is not shown
};

/// A card of the user's own is unchanged, except for text that could end the fence.
std::string fenced(std::string_view text, Store::Kind store) {
  std::string block(contract::MemoryFence::opening);
  block += store == Store::Kind::personal ? Shown::escapeFences(text) : Shown::text(text);
  return block.append(contract::MemoryFence::closing);
}

ToolReply cardReply(const std::vector<FoundCard>& cards) {
  ToolReply reply;
  for (const auto& [place, text] : cards) {
    if (!reply.text.empty()) reply.text += "\n\n";
    if (cards.size() > 1) {
      reply.text.append("The ").append(nameOf(place.store)).append(" card ");
      reply.text.append(Shown::line(place.fileName)).append(":\n");
    }
    reply.text += fenced(text, place.store);
  }
  reply.meta.set(contract::Meta::replyKind, contract::ReplyKind::card);
  reply.meta.set(contract::Meta::store, nameOf(cards.front().place.store));
  reply.meta.set(contract::Meta::file, cards.front().place.fileName);
  return reply;
}

/// What is wrong with the name itself; empty when nothing is.
std::string_view explained(CardName::Flaw flaw) {
  switch (flaw) {
    case CardName::Flaw::none:
      return {};
    case CardName::Flaw::absolute:
      return "it is an absolute path, and only cards in the memory directory can be read";
    case CardName::Flaw::leavesStore:
      return "it leads out of the memory directory";
    case CardName::Flaw::inSubdirectory:
      return "it is a path, and cards have plain names";
    case CardName::Flaw::unusable:
      break;
  }
  return "it cannot be the name of a file";
}

ToolReply refused(std::string_view name, std::string_view reason) {
  return refusal("The card \"" + Shown::line(name) + "\" was refused: " + std::string(reason) +
                 '.');
}

/// The stores to look into, the project's first.
std::vector<Store> storesFor(const Scope& scope, std::optional<Store::Kind> wanted) {
  std::vector<Store> stores;
  for (const auto& store : {scope.project, scope.personal}) {
    if (store && (!wanted || store->kind == *wanted)) stores.push_back(*store);
  }
  return stores;
}

ToolReply notFound(std::string_view name, const std::vector<Store>& stores, bool leftOut) {
  std::string text = "There is no card \"" + Shown::line(name) + "\".";
  for (const Store& store : stores) {
    if (!StoreFiles::cardsLeadOut(store)) continue;
    text += " Cards in " + store.root + "/memory were skipped: it is a symbolic link out of " +
            "the store.";
  }
  if (leftOut) text.append(" ").append(projectLeftOutNote);
  return refusal(text);
}

/// Looks for a file of that name in the store. True when there is one, even if it cannot be shown.
bool look(const Store& store, const std::string& name, Found& found) {
  auto read = StoreFiles::readCardOrLink(store, name);
  if (auto* file = std::get_if<StoreFiles::FileText>(&read)) {
    found.cards.push_back(
        {.place = {.store = store.kind, .fileName = name}, .text = std::move(file->text)});
    return true;
  }
  const auto reason = std::get<StoreFiles::NoText>(read);
  if (reason == StoreFiles::NoText::missing) return false;
  if (!found.refusal) found.refusal = refused(name, StoreFiles::explained(reason));
  return true;
}

Found byFileName(const std::vector<Store>& stores, const std::string& name) {
  Found found;
  for (const Store& store : stores) look(store, name, found);
  return found;
}

/// The first card of each store among `places`.
Found byTitle(const std::vector<Store>& stores, const std::vector<CardPlace>& places) {
  Found found;
  for (const Store& store : stores) {
    for (const CardPlace& place : places) {
      if (place.store == store.kind && look(store, place.fileName, found)) break;
    }
  }
  return found;
}

/// Absent when no card was found.
std::optional<ToolReply> replyOf(Found found) {
  if (!found.cards.empty()) return cardReply(found.cards);
  return std::move(found.refusal);
}

}  // namespace

ToolReply run(Arguments& arguments, const OS::Environment& environment) {
  const std::string name = arguments.neededString("name");
  const std::optional<Store::Kind> wanted = arguments.store("store");
  const std::optional<std::string> cwd = arguments.cwd();
  if (arguments.flaw()) return badArguments(*arguments.flaw());
  const Scope scope = Scope::find(environment, cwd);
  const std::vector<Store> stores = storesFor(scope, wanted);

  // A title may look like a path, so titles come first.
  Index index = Index::opened(scope, environment, Index::untilCardsAreKnown);
  const std::vector<CardPlace> places = index.withTitle(Text::onOneLine(name));
  if (auto reply = replyOf(byTitle(stores, places))) return std::move(*reply);

  const CardName::Flaw flaw = CardName::flawOf(name);
  if (flaw != CardName::Flaw::none) return refused(name, explained(flaw));
  const bool complete = name.ends_with(StoreFiles::cardSuffix);
  const std::string fileName = complete ? name : name + std::string(StoreFiles::cardSuffix);
  if (auto reply = replyOf(byFileName(stores, fileName))) return std::move(*reply);
  return notFound(name, stores, scope.projectLeftOut && wanted != Store::Kind::personal);
}

}  // namespace quillstead::server::Grab
