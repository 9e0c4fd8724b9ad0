#include "server/Index/IndexTables.h"

#include "server/Index/Words.h"

#include <algorithm>
#include <limits>

namespace quillstead::server::IndexTables {

namespace {

constexpr std::uint64_t noNamesStamp = 0;

}  // namespace

bool create(Database& database) {
  return database.run(R"sql(
    CREATE TABLE IF NOT EXISTS state (
      only INTEGER PRIMARY KEY CHECK (only = 1), fingerprint, isUnfinished, holdsRemovedWords,
      namesStamp, roots);
    CREATE TABLE IF NOT EXISTS files (
      id INTEGER PRIMARY KEY, store, name, size, modified, isCard, title, content);
    CREATE INDEX IF NOT EXISTS newest ON files (isCard, store, modified DESC, name, title);
    CREATE INDEX IF NOT EXISTS titles ON files (title) WHERE isCard;
    CREATE VIRTUAL TABLE IF NOT EXISTS cards USING fts5(
      title, tags, body,
      tokenize = "porter unicode61 remove_diacritics 2 categories 'L* M* N* Co' tokenchars '.'");
  )sql");
}

std::optional<State> state(Database& database) {
  Statement read = database.prepare(
      "SELECT fingerprint, isUnfinished, holdsRemovedWords, namesStamp FROM state");
  if (read.step() != Statement::Step::row) return std::nullopt;
  State state{.fingerprint = read.integer(0),
              .isUnfinished = read.integer(1) != 0,
              .holdsRemovedWords = read.integer(2) != 0,
              .namesStamp = static_cast<std::uint64_t>(read.integer(3))};
  if (state.namesStamp == noNamesStamp) state.namesStamp.reset();
  return state;
}

bool setState(Database& database, State state, const std::vector<std::string>& roots) {
  std::string joined;
  for (const std::string& root : roots) joined.append(root).push_back('\0');
  return database.prepare("INSERT OR REPLACE INTO state VALUES (1, ?, ?, ?, ?, ?)")
      .bind(1, state.fingerprint)
      .bind(2, std::int64_t{state.isUnfinished})
      .bind(3, std::int64_t{state.holdsRemovedWords})
      .bind(4, static_cast<std::int64_t>(state.namesStamp.value_or(noNamesStamp)))
      .bind(5, joined)
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

std::optional<bool> wipeSome(Database& database) {
  // A negative number of pages makes all parts of the index be merged, not only those of one size;
  // a removed row leaves it when its part is merged with the oldest.
  constexpr std::int64_t leastChange = 2;  // smaller when there was nothing to merge
  const std::int64_t before = database.totalChanges();
  if (!database.run("INSERT INTO cards (cards, rank) VALUES ('merge', -100)")) return std::nullopt;
  return database.totalChanges() - before < leastChange;
}

std::optional<std::vector<Row>> rows(Database& database) { return rows(database, {0, 1}); }

std::optional<std::vector<Row>> rows(Database& database, Part part) {
  const auto most = mostRows(database);
  if (!most) return std::nullopt;
  const auto border = [&](std::uint64_t number) {
    return static_cast<std::int64_t>(*most * number / part.of);
  };
  std::vector<Row> some;
  Statement read = database.prepare(
      "SELECT id, store, name, size, modified FROM files WHERE id > ? AND id <= ?");
  const bool isLast = part.number + 1 == part.of;
  read.bind(1, part.number == 0 ? std::numeric_limits<std::int64_t>::min() : border(part.number));
  read.bind(2, isLast ? std::numeric_limits<std::int64_t>::max() : border(part.number + 1));
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return some;
    if (step == Statement::Step::failed) return std::nullopt;
    some.push_back({.id = read.integer(0),
                    .store = static_cast<Store::Kind>(read.integer(1)),
                    .name = std::string(read.text(2)),
                    .stamp = {.size = read.integer(3), .modified = read.integer(4)}});
  }
}

std::optional<std::size_t> mostRows(Database& database) {
  Statement read = database.prepare("SELECT max(id) FROM files");
  if (read.step() != Statement::Step::row) return std::nullopt;
  return static_cast<std::size_t>(std::max<std::int64_t>(read.integer(0), 0));
}

Writer::Writer(Database& database)
    : removeFile_(database.prepare("DELETE FROM files WHERE id = ?")),
      removeCard_(database.prepare("DELETE FROM cards WHERE rowid = ?")),
      addFile_(database.prepare("INSERT INTO files "
                                "(store, name, size, modified, isCard, title, content) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?)")),
      addCard_(database.prepare("INSERT INTO cards (rowid, title, tags, body) "
                                "VALUES (last_insert_rowid(), ?, ?, ?)")),
      touch_(database.prepare("UPDATE files SET size = ?, modified = ? "
                              "WHERE id = ? AND content = ? RETURNING id")) {}

bool Writer::remove(std::int64_t id) {
  return removeCard_.bind(1, id).run() && removeFile_.bind(1, id).run();
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
  return addCard_.bind(1, title).bind(2, spacedTags).bind(3, body).run();
}

}  // namespace quillstead::server::IndexTables
