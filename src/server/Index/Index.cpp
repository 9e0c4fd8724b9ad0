#include "server/Index/Index.h"

#include "server/Index/CardSearch.h"
#include "server/Index/IndexFile.h"
#include "server/Index/IndexTables.h"
#include "server/Index/IndexUpdate.h"
#include "server/Shown.h"

#include <algorithm>
#include <array>
#include <string>
#include <tuple>
#include <utility>

namespace quillstead::server {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t mostOfOneTitle = 100;

/// Runs the query in one transaction: all its statements see the same state, whatever other servers
/// write. Returns the query's result; absent also when it could not be run.
template <typename Query>
auto run(Database& database, const Query& query) {
  using Result = decltype(query(database));
  if (!database.beginReading()) return Result();
  Result result = query(database);
  database.rollBack();
  return result;
}

}  // namespace

Index Index::opened(const Scope& scope, const OS::Environment& environment, Patience patience) {
  std::string path = IndexFile::place(scope, environment);
  Database database =
      path.empty() ? Database::inMemory() : Database::open(path, patience.withOthers);
  Index index(Survey::opened(scope), std::move(path), std::move(database), patience);
  index.update();
  return index;
}

/// `query`: returns an optional, absent when the database failed.
template <typename Query>
auto Index::resultOf(const Query& query) {
  using Result = typename decltype(query(database_))::value_type;
  if (auto result = run(database_, query)) return std::move(*result);
  if (database_.error() == DatabaseError::damaged && database_.empty() && bringUpToDate()) {
    if (auto result = run(database_, query)) return std::move(*result);
  }
  if (!path_.empty()) {
    openInMemory();
    if (auto result = run(database_, query)) return std::move(*result);
  }
  return Result();
}

std::vector<CardPlace> Index::search(const std::vector<Words::SearchTerm>& terms,
                                     std::size_t limit) {
  CommonTerms common;
  std::vector<CardPlace> places = resultOf(
      [&](Database& database) { return IndexQueries::search(database, terms, limit, common); });
  common.keep(database_);
  return places;
}

Titles Index::titles(std::size_t enough) {
  return resultOf([&](Database& database) { return IndexQueries::titles(database, enough); });
}

std::vector<CardPlace> Index::withTitle(std::string_view title) {
  return resultOf(
      [&](Database& database) { return IndexQueries::withTitle(database, title, mostOfOneTitle); });
}

void Index::update() {
  if (bringUpToDate()) return;
  if (database_.error() == DatabaseError::busy) {
    database_.setPatience(0ms);  // there was enough waiting: it answers as it is, or not at all
    return;
  }
  if (database_.error() == DatabaseError::damaged && database_.empty() && bringUpToDate()) return;
  openInMemory();
}

void Index::openInMemory() {
  path_.clear();
  database_ = Database::inMemory();
  bringUpToDate();
}

bool Index::bringUpToDate() {
  const auto deadline = OS::MonotonicClock::now() + patience_.withFiles;
  const auto turn = [this] { return IndexFile::nextTurn(path_); };
  if (!database_.beginReading()) return false;
  const auto outcome = IndexUpdate::run(database_, survey_, deadline, turn);
  if (outcome == IndexUpdate::Outcome::written && !path_.empty()) IndexFile::prune(path_);
  return outcome != IndexUpdate::Outcome::failed;
}

}  // namespace quillstead::server

namespace quillstead::server::IndexQueries {

namespace {

constexpr std::size_t leastOfOneStore = 2;

/// How many of the best cards are searched for cards of a store that has none at the top.
constexpr std::size_t mostLookedAt = 2'000;

using CountOfEachStore = std::array<std::size_t, 2>;

struct Candidate {
  double score;
  CardPlace place;
};

bool comesBefore(const Candidate& one, const Candidate& other) {
  if (one.score != other.score) return one.score > other.score;
  return std::tie(one.place.store, one.place.fileName) <
         std::tie(other.place.store, other.place.fileName);
}

std::size_t& countOf(Store::Kind store, CountOfEachStore& counts) {
  return counts.at(static_cast<std::size_t>(store));
}

std::size_t outstanding(const CountOfEachStore& reserved) { return reserved[0] + reserved[1]; }

/// The `limit` best. Each store has places reserved for its best `leastOfOneStore`.
std::vector<CardPlace> best(std::vector<Candidate> candidates, std::size_t limit) {
  std::sort(candidates.begin(), candidates.end(), comesBefore);
  CountOfEachStore reserved{};
  for (const Candidate& one : candidates) {
    std::size_t& places = countOf(one.place.store, reserved);
    places = std::min(places + 1, leastOfOneStore);
  }
  std::vector<CardPlace> found;
  for (Candidate& one : candidates) {
    if (found.size() == limit) break;
    std::size_t& places = countOf(one.place.store, reserved);
    if (places > 0) {
      --places;
    } else if (found.size() + outstanding(reserved) >= limit) {
      continue;
    }
    found.push_back(std::move(one.place));
  }
  return found;
}

std::size_t totalOf(const IndexTables::CardCounts& cards) {
  return static_cast<std::size_t>(std::max<std::int64_t>(cards[0] + cards[1], 0));
}

/// How many cards each store has to bring before there are enough; 0 for a store without cards.
CountOfEachStore wantedOfEachStore(const IndexTables::CardCounts& cards) {
  CountOfEachStore wanted{};
  for (std::size_t store = 0; store < wanted.size(); ++store) {
    wanted.at(store) = cards.at(store) > 0 ? leastOfOneStore : 0;
  }
  return wanted;
}

Store::Kind kindOf(std::int64_t column) {
  return column == static_cast<std::int64_t>(Store::Kind::project) ? Store::Kind::project
                                                                   : Store::Kind::personal;
}

CardPlace placeIn(const Statement& row) {
  return {.store = kindOf(row.integer(0)), .fileName = std::string(row.text(1))};
}

std::optional<std::vector<CardPlace>> places(Statement& read) {
  std::vector<CardPlace> all;
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return all;
    if (step == Statement::Step::failed) return std::nullopt;
    all.push_back(placeIn(read));
  }
}

}  // namespace

std::optional<std::vector<CardPlace>> search(Database& database,
                                             const std::vector<Words::SearchTerm>& terms,
                                             std::size_t limit, CommonTerms& common) {
  const auto cards = IndexTables::cardCounts(database, &common);
  if (!cards) return std::nullopt;
  // One store alone needs no more than it shows.
  const bool areTwo = (*cards)[0] > 0 && (*cards)[1] > 0;
  auto scored = CardSearch::find(database, terms, totalOf(*cards),
                                 areTwo ? std::max(limit, mostLookedAt) : limit, common);
  if (!scored) return std::nullopt;
  std::sort(scored->begin(), scored->end(),
            [](const auto& one, const auto& other) { return one.score > other.score; });

  CountOfEachStore wanted = wantedOfEachStore(*cards);
  std::vector<Candidate> candidates;
  Statement read = database.prepare("SELECT store, name FROM files WHERE id = ?");
  for (const CardSearch::Scored& one : *scored) {
    const bool isEnough = candidates.size() >= limit && one.score < candidates.back().score;
    if (isEnough && outstanding(wanted) == 0) break;
    if (read.bind(1, one.id).step() != Statement::Step::row) return std::nullopt;
    candidates.push_back({.score = one.score, .place = placeIn(read)});
    std::size_t& missing = countOf(candidates.back().place.store, wanted);
    missing -= missing > 0 ? 1U : 0U;
    read.reset();
  }
  return best(std::move(candidates), limit);
}

std::optional<Titles> titles(Database& database, std::size_t enough) {
  Titles titles;
  const auto cards = IndexTables::cardCounts(database);
  if (!cards) return std::nullopt;
  titles.total = totalOf(*cards);

  Statement read = database.prepare(
      "SELECT title FROM files WHERE isCard = 1 ORDER BY store, modified DESC, name");
  for (std::size_t bytes = 0; bytes < enough;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) break;
    if (step == Statement::Step::failed) return std::nullopt;
    bytes += titles.newest.emplace_back(Shown::line(read.text(0))).size() + 1;
  }
  return titles;
}

std::optional<std::vector<CardPlace>> withTitle(Database& database, std::string_view title,
                                                std::size_t limit) {
  for (const std::string_view condition : {"title = ?", "title = ? COLLATE NOCASE"}) {
    Statement read = database.prepare("SELECT store, name FROM files WHERE isCard = 1 AND " +
                                      std::string(condition) + " ORDER BY store, name LIMIT ?");
    auto found = places(read.bind(1, title).bind(2, static_cast<std::int64_t>(limit)));
    if (!found || !found->empty()) return found;
  }
  return std::vector<CardPlace>();
}

}  // namespace quillstead::server::IndexQueries
