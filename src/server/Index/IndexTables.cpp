#include "server/Index/IndexTables.h"

#include "server/Index/Words.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>

namespace quillstead::server::IndexTables {

namespace {

constexpr std::uint64_t noNamesStamp = 0;

/// A column may hold anything, because another program may have written the file.
std::size_t placeOf(std::int64_t store) { return store == 0 ? 0 : 1; }

}  // namespace

bool create(Database& database) {
  // hashsize: the words of one step are collected in memory and written as one part.
  return database.run(R"sql(
    CREATE TABLE IF NOT EXISTS state (
      only INTEGER PRIMARY KEY CHECK (only = 1), fingerprint, isUnfinished, needsMerging, namesStamp,
      seenParts, projectCards, personalCards, roots, commonTerms);
    CREATE TABLE IF NOT EXISTS seen (part INTEGER PRIMARY KEY, files);
    CREATE TABLE IF NOT EXISTS files (
      id INTEGER PRIMARY KEY, store, name, size, modified, isCard, title, content);
    CREATE VIRTUAL TABLE IF NOT EXISTS cards USING fts5(
      title, tags, body,
      tokenize = "porter unicode61 remove_diacritics 2 categories 'L* M* N* Co' tokenchars '.'");
    INSERT INTO cards (cards, rank) VALUES ('hashsize', 33554432);
  )sql");
}

bool orderTitles(Database& database) {
  return database.run(
      "CREATE INDEX IF NOT EXISTS newest ON files (isCard, store, modified DESC, name, title)");
}

bool setMerging(Database& database, Merging merging) {
  if (merging == Merging::atTheEnd) {
    return database.run(R"sql(
      INSERT INTO cards (cards, rank) VALUES ('automerge', 0);
      INSERT INTO cards (cards, rank) VALUES ('crisismerge', 1999);
    )sql");
  }
  return database.run(R"sql(
    INSERT INTO cards (cards, rank) VALUES ('automerge', 4);
    INSERT INTO cards (cards, rank) VALUES ('crisismerge', 16);
  )sql");
}

std::optional<State> state(Database& database) {
  Statement read = database.prepare(
      "SELECT fingerprint, isUnfinished, needsMerging, namesStamp, seenParts, projectCards, "
      "personalCards FROM state");
  if (read.step() != Statement::Step::row) return std::nullopt;
  State state{.fingerprint = read.integer(0),
              .isUnfinished = read.integer(1) != 0,
              .needsMerging = read.integer(2) != 0,
              .namesStamp = static_cast<std::uint64_t>(read.integer(3)),
              .seenParts = read.integer(4),
              .cards = {read.integer(5), read.integer(6)}};
  if (state.namesStamp == noNamesStamp) state.namesStamp.reset();
  return state;
}

bool setState(Database& database, State state, const std::vector<std::string>& roots) {
  std::string joined;
  for (const std::string& root : roots) joined.append(root).push_back('\0');
  return database.prepare("INSERT OR REPLACE INTO state VALUES (1, ?, ?, ?, ?, ?, ?, ?, ?, '')")
      .bind(1, state.fingerprint)
      .bind(2, std::int64_t{state.isUnfinished})
      .bind(3, std::int64_t{state.needsMerging})
      .bind(4, static_cast<std::int64_t>(state.namesStamp.value_or(noNamesStamp)))
      .bind(5, state.seenParts)
      .bind(6, state.cards[0])
      .bind(7, state.cards[1])
      .bind(8, joined)
      .run();
}

std::vector<std::string> roots(Database& database) {
  std::vector<std::string> all;
  Statement read = database.prepare("SELECT roots FROM state");
  if (read.step() != Statement::Step::row) return all;
  for (std::string_view rest = read.text(0); !rest.empty();) {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    all.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return all;
}

std::optional<CardCounts> cardCounts(Database& database, CommonTerms* common) {
  Statement read =
      database.prepare("SELECT projectCards, personalCards, fingerprint, commonTerms FROM state");
  if (read.step() != Statement::Step::row) return std::nullopt;
  if (common) *common = CommonTerms(read.integer(2), read.text(3));
  return CardCounts{read.integer(0), read.integer(1)};
}

std::optional<CardCounts> countedCards(Database& database) {
  Statement read =
      database.prepare("SELECT store, count(*) FROM files WHERE isCard = 1 GROUP BY store");
  CardCounts counts{};
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return counts;
    if (step == Statement::Step::failed) return std::nullopt;
    counts.at(placeOf(read.integer(0))) += read.integer(1);
  }
}

std::optional<bool> mergeSome(Database& database) {
  // A negative number of pages makes all parts of the index be merged, not only those of one size;
  // a removed row leaves it when its part is merged with the oldest.
  constexpr std::int64_t leastChange = 2;  // smaller when there was nothing to merge
  const std::int64_t before = database.totalChanges();
  if (!database.run("INSERT INTO cards (cards, rank) VALUES ('merge', -100)")) return std::nullopt;
  return database.totalChanges() - before < leastChange;
}

std::optional<std::vector<Row>> rows(Database& database) {
  std::vector<Row> all;
  Statement read = database.prepare("SELECT id, store, name, size, modified FROM files");
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return all;
    if (step == Statement::Step::failed) return std::nullopt;
    all.push_back({.id = read.integer(0),
                   .store = static_cast<Store::Kind>(placeOf(read.integer(1))),
                   .name = std::string(read.text(2)),
                   .stamp = {.size = read.integer(3), .modified = read.integer(4)}});
  }
}

Writer::Writer(Database& database, CardCounts& cards)
    : cards_(cards),
      removeFile_(database.prepare("DELETE FROM files WHERE id = ? RETURNING store, isCard")),
      removeCard_(database.prepare("DELETE FROM cards WHERE rowid = ?")),
      addFile_(database.prepare("INSERT INTO files "
                                "(store, name, size, modified, isCard, title, content) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?)")),
      addCard_(database.prepare("INSERT INTO cards (rowid, title, tags, body) "
                                "VALUES (last_insert_rowid(), ?, ?, ?)")),
      touch_(database.prepare("UPDATE files SET size = ?, modified = ? "
                              "WHERE id = ? AND content = ? RETURNING id")) {}

bool Writer::remove(std::int64_t id) {
  if (!removeCard_.bind(1, id).run()) return false;
  const Statement::Step step = removeFile_.bind(1, id).step();
  const bool wasCard = step == Statement::Step::row && removeFile_.integer(1) != 0;
  if (wasCard) --cards_.at(placeOf(removeFile_.integer(0)));
  removeFile_.reset();
  return step != Statement::Step::failed;
}

bool Writer::touch(std::int64_t id, OS::FileStamp stamp, std::uint64_t content) {
  touch_.bind(1, stamp.size).bind(2, stamp.modified).bind(3, id);
  const bool touched =
      touch_.bind(4, static_cast<std::int64_t>(content)).step() == Statement::Step::row;
  touch_.reset();
  return touched;
}

bool Writer::add(const Survey::File& file, const Card* card, std::uint64_t content) {
  const OS::FileStamp stamp = file.stamp.value_or(OS::FileStamp{});
  const bool added = addFile_.bind(1, static_cast<std::int64_t>(file.store))
                         .bind(2, file.name)
                         .bind(3, stamp.size)
                         .bind(4, stamp.modified)
                         .bind(5, std::int64_t{card != nullptr})
                         .bind(6, card ? std::string_view(card->title) : std::string_view())
                         .bind(7, static_cast<std::int64_t>(content))
                         .run();
  if (!added || !card) return added;

  std::string tags;
  for (const std::string& tag : card->tags) tags.append(tag).append(" ");
  const std::string title = Words::indexed(card->title);
  const std::string spacedTags = Words::indexed(tags);
  const std::string body = Words::indexed(card->body);
  if (!addCard_.bind(1, title).bind(2, spacedTags).bind(3, body).run()) return false;
  ++cards_.at(static_cast<std::size_t>(file.store));
  return true;
}

}  // namespace quillstead::server::IndexTables

namespace quillstead::server {

namespace {

constexpr char endOfTerm = '\n';
constexpr std::size_t mostBytesOfTerms = 4'096;

}  // namespace

bool CommonTerms::contain(std::string_view expression) const {
  for (std::string_view rest = text_; !rest.empty();) {
    const std::size_t length = std::min(rest.find(endOfTerm), rest.size());
    if (rest.substr(0, length) == expression) return true;
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return false;
}

void CommonTerms::add(std::string_view expression) {
  if (text_.size() + expression.size() >= mostBytesOfTerms) return;
  text_.append(expression).push_back(endOfTerm);
  isNew_ = true;
}

void CommonTerms::keep(Database& database) const {
  if (!isNew_) return;
  database.setPatience(std::chrono::milliseconds(0));
  if (!database.run("PRAGMA synchronous = OFF; PRAGMA secure_delete = ON")) return;
  database.prepare("UPDATE state SET commonTerms = ?1 WHERE fingerprint = ?2")
      .bind(1, text_)
      .bind(2, fingerprint_)
      .run();
}

}  // namespace quillstead::server
