#include "server/Index/IndexTables.h"

#include "server/Index/Words.h"

namespace quillstead::IndexTables {

bool create(Database& database) {
  return database.run(R"sql(
    CREATE TABLE IF NOT EXISTS state (only INTEGER PRIMARY KEY CHECK (only = 1), fingerprint);
    CREATE TABLE IF NOT EXISTS files (
      id INTEGER PRIMARY KEY, store, name, size, modified, isCard, title);
    CREATE INDEX IF NOT EXISTS newest ON files (isCard, store, modified DESC, name, title);
    CREATE INDEX IF NOT EXISTS titles ON files (title) WHERE isCard;
    CREATE VIRTUAL TABLE IF NOT EXISTS cards USING fts5(
      title, tags, body, tokenize = 'porter unicode61 remove_diacritics 2');
  )sql");
}

std::optional<std::int64_t> fingerprint(Database& database) {
  Statement read = database.prepare("SELECT fingerprint FROM state");
  if (read.step() != Statement::Step::row) return std::nullopt;
  return read.integer(0);
}

bool setFingerprint(Database& database, std::int64_t fingerprint) {
  return database.prepare("INSERT OR REPLACE INTO state VALUES (1, ?)").bind(1, fingerprint).run();
}

std::optional<std::vector<Row>> rows(Database& database) {
  std::vector<Row> all;
  Statement read = database.prepare("SELECT id, store, name, size, modified FROM files");
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return all;
    if (step == Statement::Step::failed) return std::nullopt;
    all.push_back({.id = read.integer(0),
                   .store = static_cast<Store::Kind>(read.integer(1)),
                   .name = std::string(read.text(2)),
                   .stamp = {.size = read.integer(3), .modified = read.integer(4)}});
  }
}

Writer::Writer(Database& database)
    : removeFile_(database.prepare("DELETE FROM files WHERE id = ?")),
      removeCard_(database.prepare("DELETE FROM cards WHERE rowid = ?")),
      addFile_(database.prepare("INSERT INTO files (store, name, size, modified, isCard, title) "
                                "VALUES (?, ?, ?, ?, ?, ?)")),
      addCard_(database.prepare("INSERT INTO cards (rowid, title, tags, body) "
                                "VALUES (last_insert_rowid(), ?, ?, ?)")) {}

bool Writer::remove(std::int64_t id) {
  return removeCard_.bind(1, id).run() && removeFile_.bind(1, id).run();
}

bool Writer::add(const Survey::File& file, const Card* card) {
  const bool added = addFile_.bind(1, static_cast<std::int64_t>(file.store))
                         .bind(2, file.name)
                         .bind(3, file.stamp.size)
                         .bind(4, file.stamp.modified)
                         .bind(5, std::int64_t{card != nullptr})
                         .bind(6, card ? std::string_view(card->title) : std::string_view())
                         .run();
  if (!added || !card) return added;

  std::string tags;
  for (const std::string& tag : card->tags) tags.append(tag).append(" ");
  const std::string title = Words::spaced(card->title);
  const std::string spacedTags = Words::spaced(tags);
  const std::string body = Words::spaced(card->body);
  return addCard_.bind(1, title).bind(2, spacedTags).bind(3, body).run();
}

}  // namespace quillstead::IndexTables
