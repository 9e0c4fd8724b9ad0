#include "cli/CardReasons.h"

#include "server/Index/Index.h"
#include "server/Index/Words.h"
#include "server/Recall/Recall.h"
#include "server/Store/Card.h"
#include "server/Store/Scope.h"
#include "server/Store/StoreFiles.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <variant>

namespace quillstead::cli::CardReasons {

namespace {

using server::CardPlace;
using server::Scope;
namespace StoreFiles = server::StoreFiles;

using server::Words::SearchTerm;

/// The words of a card as the index takes them.
std::set<std::string> wordsOf(const server::Card& card) {
  std::string all = card.title;
  for (const std::string& tag : card.tags) all.append("\n").append(tag);
  const std::string indexed = server::Words::indexed(all + "\n" + card.body);
  std::set<std::string> words;
  for (std::string_view rest = indexed; !rest.empty();) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    words.insert(server::Words::lowered(word));
    rest.remove_prefix(std::min(rest.size(), word.size() + 1));
  }
  return words;
}

/// Whether the word is in the card, or one that begins with it where that is meant.
bool isIn(const std::set<std::string>& words, const SearchTerm& term) {
  const auto found = words.lower_bound(term.word);
  if (found == words.end()) return false;
  return *found == term.word || (term.isBeginning && found->starts_with(term.word));
}

std::optional<CardReason> reasonFor(const CardPlace& place, const Scope& scope,
                                    const std::vector<SearchTerm>& asked) {
  const auto& store = place.store == server::Store::Kind::project ? scope.project : scope.personal;
  if (!store) return std::nullopt;
  const auto read =
      StoreFiles::readCard(StoreFiles::openCards(*store), place.store, place.fileName);
  const auto* const file = std::get_if<StoreFiles::FileText>(&read);
  if (!file) return std::nullopt;
  const server::Card card = server::Card::parse(file->text, place.fileName);
  CardReason reason{.store = server::nameOf(place.store),
                    .file = place.fileName,
                    .title = card.title,
                    .words = {}};
  const std::set<std::string> inCard = wordsOf(card);
  for (const SearchTerm& term : asked) {
    if (isIn(inCard, term)) reason.words.push_back(term.word);
  }
  return reason;
}

}  // namespace

std::vector<CardReason> find(const std::string& prompt, const std::string& directory,
                             const OS::Environment& environment) {
  const Scope scope = Scope::find(environment, directory);
  server::Index index =
      server::Index::opened(scope, environment, server::Index::untilCardsAreKnown);
  const std::vector<SearchTerm> asked = server::Words::searchTerms(prompt);
  std::vector<CardReason> reasons;
  for (const CardPlace& place :
       server::Recall::choose(index.search(asked, server::Recall::mostCandidates))) {
    if (auto reason = reasonFor(place, scope, asked)) reasons.push_back(std::move(*reason));
  }
  return reasons;
}

}  // namespace quillstead::cli::CardReasons
