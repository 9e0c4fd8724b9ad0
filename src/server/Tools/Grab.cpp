#include "server/Tools/Grab.h"

#include "server/Index/Index.h"
#include "server/Store/Card.h"
#include "server/Store/CardName.h"
#include "server/Store/StoreFiles.h"

#include <utility>
#include <variant>

namespace quillstead::Grab {

namespace {

ToolReply cardReply(std::string text, const CardPlace& place) {
  ToolReply reply{.text = std::move(text), .meta = {}};
  reply.meta.set("quillstead/replyKind", "card");
  reply.meta.set("quillstead/store", nameOf(place.store));
  reply.meta.set("quillstead/file", place.fileName);
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

std::string_view explained(StoreFiles::NoText reason) {
  switch (reason) {
    case StoreFiles::NoText::outsideStore:
      return "it is a symbolic link out of the store";
    case StoreFiles::NoText::notAFile:
      return "it is not a file";
    case StoreFiles::NoText::tooLarge:
      return "it is larger than 1 MiB";
    case StoreFiles::NoText::binary:
      return "it is not text";
    case StoreFiles::NoText::missing:
    case StoreFiles::NoText::unreadable:
      break;
  }
  return "it cannot be read";
}

ToolReply refused(std::string_view name, std::string_view reason) {
  return refusal("The card \"" + onOneLine(name) + "\" was refused: " + std::string(reason) + '.');
}

/// The stores to look into, the project's first.
std::vector<Store> storesFor(const Scope& scope, std::optional<Store::Kind> wanted) {
  std::vector<Store> stores;
  for (const auto& store : {scope.project, scope.personal}) {
    if (store && (!wanted || store->kind == *wanted)) stores.push_back(*store);
  }
  return stores;
}

ToolReply notFound(std::string_view name, const std::vector<Store>& stores) {
  std::string text = "There is no card \"" + onOneLine(name) + "\".";
  for (const Store& store : stores) {
    if (!StoreFiles::cardsLeadOut(store)) continue;
    text += " Cards in " + store.root + "/memory were passed over: it is a symbolic link out of " +
            "the store.";
  }
  return refusal(std::move(text));
}

/// The answer for a file of that name; absent when no store has one.
std::optional<ToolReply> byFileName(const std::vector<Store>& stores, const std::string& name) {
  for (const Store& store : stores) {
    auto read = StoreFiles::readCardOrLink(store, name);
    if (auto* file = std::get_if<StoreFiles::FileText>(&read)) {
      return cardReply(std::move(file->text), {.store = store.kind, .fileName = name});
    }
    const auto reason = std::get<StoreFiles::NoText>(read);
    if (reason != StoreFiles::NoText::missing) return refused(name, explained(reason));
  }
  return std::nullopt;
}

std::optional<ToolReply> byTitle(const std::vector<Store>& stores,
                                 const std::vector<CardPlace>& places) {
  for (const CardPlace& place : places) {
    for (const Store& store : stores) {
      if (store.kind != place.store) continue;
      if (auto reply = byFileName({store}, place.fileName)) return reply;
    }
  }
  return std::nullopt;
}

}  // namespace

ToolOutcome run(Arguments& arguments, const OS::Environment& environment) {
  const std::string name = arguments.neededText("name");
  const std::optional<Store::Kind> wanted = arguments.store("store");
  const Scope scope = arguments.scope(environment);
  if (arguments.flaw()) return BadArguments{*arguments.flaw()};
  const std::vector<Store> stores = storesFor(scope, wanted);

  // A title may look like a path, so titles come first.
  Index index(scope, environment);
  if (auto reply = byTitle(stores, index.withTitle(onOneLine(name)))) return std::move(*reply);

  const CardName::Flaw flaw = CardName::flawOf(name);
  if (flaw != CardName::Flaw::none) return refused(name, explained(flaw));
  const bool complete = name.ends_with(StoreFiles::cardSuffix);
  if (auto reply =
          byFileName(stores, complete ? name : name + std::string(StoreFiles::cardSuffix))) {
    return std::move(*reply);
  }
  return notFound(name, stores);
}

}  // namespace quillstead::Grab
