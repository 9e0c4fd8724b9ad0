#include "server/Index/Index.h"

#include "server/Index/CommonTerms.h"
#include "server/Index/IndexFile.h"
#include "server/Index/IndexQueries.h"
#include "server/Index/IndexUpdate.h"

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
