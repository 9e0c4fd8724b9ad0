#include "server/Index/Database.h"

#include <sqlite3.h>

namespace quillstead::server {

namespace {

/// Configures SQLite, once per process before its first use: one thread, no memory statistics.
void configure() {
  [[maybe_unused]] static const bool done = [] {
    sqlite3_config(SQLITE_CONFIG_SINGLETHREAD);
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    return true;
  }();
}

DatabaseError errorFor(int result) {
  constexpr int primaryCode = 0xFF;
  switch (result & primaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return DatabaseError::busy;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR:      // such as a table that is missing or has other columns
    case SQLITE_INTERRUPT:  // a statement took too many steps: the schema must be forged
    case SQLITE_AUTH:
      return DatabaseError::damaged;
    default:
      return DatabaseError::other;
  }
}

/// The file may hold anything. So nothing in it may run by itself: triggers, views and functions in
/// the schema are off. Only the full-text search may write its own tables.
void distrust(sqlite3* database) {
  sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  // Steps of SQLite's virtual machine. A row of ours takes about ten, so a million cards are fine.
  constexpr int mostSteps = 50'000'000;
  sqlite3_progress_handler(
      database, mostSteps, [](void*) { return 1; }, nullptr);
}

}  // namespace

void Statement::Finalise::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Statement& Statement::bind(int parameter, std::int64_t integer) {
  sqlite3_bind_int64(statement_.get(), parameter, integer);
  return *this;
}

Statement& Statement::bind(int parameter, std::string_view text) {
  // A null pointer would bind NULL.
  const char* const bytes = text.data() ? text.data() : "";
  sqlite3_bind_text64(statement_.get(), parameter, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
  return *this;
}

Statement& Statement::bind(int parameter, void* object, const char* type) {
  sqlite3_bind_pointer(statement_.get(), parameter, object, type, nullptr);
  return *this;
}

Statement::Step Statement::step() {
  if (!statement_) return Step::failed;
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return Step::row;
  if (result == SQLITE_DONE) return Step::done;
  *error_ = errorFor(result);
  return Step::failed;
}

void Statement::reset() {
  if (statement_) sqlite3_reset(statement_.get());
}

bool Statement::run() {
  const bool done = step() != Step::failed;
  reset();
  return done;
}

std::int64_t Statement::integer(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

double Statement::real(int column) const { return sqlite3_column_double(statement_.get(), column); }

std::string_view Statement::text(int column) const {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
  const int size = sqlite3_column_bytes(statement_.get(), column);
  return bytes ? std::string_view(bytes, static_cast<std::size_t>(size)) : std::string_view();
}

void Database::Close::operator()(sqlite3* database) const { sqlite3_close_v2(database); }

Database Database::openWith(const std::string& path, int flags) {
  configure();
  Database opened;
  sqlite3* handle = nullptr;
  sqlite3_open_v2(path.c_str(), &handle, flags | SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                  nullptr);
  opened.database_.reset(handle);
  distrust(handle);
  return opened;
}

Database Database::open(const std::string& path, std::chrono::milliseconds patience) {
  Database database = openWith(path, SQLITE_OPEN_NOFOLLOW);
  database.setPatience(patience);
  return database;
}

void Database::setPatience(std::chrono::milliseconds patience) {
  sqlite3_busy_timeout(database_.get(), static_cast<int>(patience.count()));
}

Database Database::inMemory() { return openWith(":memory:", SQLITE_OPEN_MEMORY); }

bool Database::run(const char* statements) {
  const int result = sqlite3_exec(database_.get(), statements, nullptr, nullptr, nullptr);
  if (result != SQLITE_OK) *error_ = errorFor(result);
  return result == SQLITE_OK;
}

bool Database::beginReading() {
  return sqlite3_get_autocommit(database_.get()) == 0 || run("BEGIN");
}

void Database::rollBack() {
  if (sqlite3_get_autocommit(database_.get()) != 0) return;
  sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

Statement Database::prepare(std::string_view statement) {
  sqlite3_stmt* prepared = nullptr;
  const int result = sqlite3_prepare_v2(database_.get(), statement.data(),
                                        static_cast<int>(statement.size()), &prepared, nullptr);
  if (result != SQLITE_OK) *error_ = errorFor(result);
  return {prepared, error_.get()};
}

std::int64_t Database::totalChanges() const { return sqlite3_total_changes(database_.get()); }

bool Database::empty() {
  sqlite3* const handle = database_.get();
  rollBack();
  sqlite3_db_config(handle, SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
  const bool emptied = run("VACUUM");
  sqlite3_db_config(handle, SQLITE_DBCONFIG_RESET_DATABASE, 0, nullptr);
  return emptied;
}

}  // namespace quillstead::server
