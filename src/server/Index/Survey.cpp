#include "server/Index/Survey.h"

#include "server/Store/StoreFiles.h"
#include "support/OS/File.h"
#include "support/Text/Hash.h"

#include <optional>
#include <string_view>

namespace quillstead::server {

namespace {

/// The deadline is checked once in so many files. On most file systems these take next to no time.
constexpr std::size_t filesBetweenLooksAtTheClock = 32;

}  // namespace

void Fingerprint::add(Store::Kind store, std::string_view name, OS::FileStamp stamp) {
  std::uint64_t hash = Text::hashOf(name) + static_cast<std::uint64_t>(store) + 1;
  hash = Text::mixed(hash) + static_cast<std::uint64_t>(stamp.size);
  hash = Text::mixed(hash) + static_cast<std::uint64_t>(stamp.modified);
  sum_ += Text::mixed(hash);
}

Survey Survey::opened(const Scope& scope) {
  Survey survey;
  for (const Store& store : scope.stores()) {
    OS::Descriptor& cards = survey.cards_.at(static_cast<std::size_t>(store.kind));
    cards = StoreFiles::openCards(store);
    if (cards.isOpen()) survey.roots_.push_back(store.root);
  }
  return survey;
}

void Survey::look(Depth depth, OS::MonotonicClock::time_point deadline) {
  files_.clear();
  fingerprint_ = {};
  complete_ = true;
  passedOver_ = false;
  visit(Store::Kind::project, depth, deadline);
  visit(Store::Kind::personal, depth, deadline);
}

std::optional<std::uint64_t> Survey::namesStamp() const {
  std::uint64_t all = 0;
  for (const OS::Descriptor& directory : cards_) {
    const auto stamp = directory.isOpen() ? OS::namesStamp(directory) : 0;
    if (!stamp) return std::nullopt;
    all = Text::mixed(all + *stamp + 1);
  }
  return all;
}

const OS::Descriptor& Survey::cards(Store::Kind store) const {
  return cards_.at(static_cast<std::size_t>(store));
}

void Survey::visit(Store::Kind store, Depth depth, OS::MonotonicClock::time_point deadline) {
  StoreFiles::forEachCardName(cards(store), [&](const char* name) {
    const bool due = files_.size() % filesBetweenLooksAtTheClock == 0;
    if (complete_ && due && OS::MonotonicClock::now() >= deadline) complete_ = false;
    if (!complete_) return;
    if (depth == Depth::names) {
      files_.push_back({.store = store, .name = name, .stamp = std::nullopt});
    } else if (const auto stamp = StoreFiles::cardStamp(cards(store), store, name)) {
      files_.push_back({.store = store, .name = name, .stamp = *stamp});
      fingerprint_.add(store, name, *stamp);
    } else {
      passedOver_ = true;
    }
  });
}

}  // namespace quillstead::server
