#include "server/Index/Survey.h"

#include "server/Store/StoreFiles.h"

namespace quillstead {

Survey::Survey(const Scope& scope) {
  for (const Store& store : scope.stores()) {
    cards_.at(static_cast<std::size_t>(store.kind)) = StoreFiles::openCards(store);
  }
  repeat();
}

void Survey::repeat() {
  files_.clear();
  fingerprint_ = {};
  visit(Store::Kind::project);
  visit(Store::Kind::personal);
}

const OS::Descriptor& Survey::cards(Store::Kind store) const {
  return cards_.at(static_cast<std::size_t>(store));
}

void Survey::visit(Store::Kind store) {
  StoreFiles::forEachCard(cards(store), [&](std::string_view name, OS::FileStamp stamp) {
    files_.push_back({.store = store, .name = std::string(name), .stamp = stamp});
    fingerprint_.add(store, name, stamp);
  });
}

}  // namespace quillstead
