#include "server/Recall/ShownCards.h"

#include "contract/Contract.h"
#include "server/Store/StoreFiles.h"

#include <algorithm>
#include <string>
#include <variant>

namespace quillstead::server::ShownCards {

namespace {

const Store* storeOf(const CardPlace& place, const Scope& scope) {
  const auto& store = place.store == Store::Kind::project ? scope.project : scope.personal;
  return store ? &*store : nullptr;
}

std::string pathOf(const CardPlace& place, const Scope& scope) {
  const Store* const store = storeOf(place, scope);
  return (store ? store->root : std::string()) + '/' + place.fileName;
}

bool isKnown(const CardPlace& place, const SessionMemory& session, const Scope& scope) {
  const std::string path = pathOf(place, scope);
  const Store* const store = storeOf(place, scope);
  if (!store || !session.knowsPlace(path)) return false;
  const auto read =
      StoreFiles::readCard(StoreFiles::openCards(*store), store->kind, place.fileName);
  const auto* const file = std::get_if<StoreFiles::FileText>(&read);
  return file && session.knowsCard(path, file->text);
}

}  // namespace

void remove(std::vector<CardPlace>& places, const SessionMemory& session, const Scope& scope) {
  std::erase_if(places, [&](const CardPlace& place) { return isKnown(place, session, scope); });
}

void note(const Recall::Block& block, SessionMemory& session, const Scope& scope) {
  const std::size_t room = std::min(session.room(), Recall::longestBlock);
  std::size_t size = block.text.size();
  for (const std::size_t span : block.spans) size -= span;
  for (std::size_t at = 0; at < block.spans.size(); ++at) {
    size += block.spans[at];
    if (size > room) break;
    session.cardShown(pathOf(block.cards[at].place, scope), block.cards[at].text);
  }
  session.keep();
}

}  // namespace quillstead::server::ShownCards
