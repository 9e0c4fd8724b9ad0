#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace quillstead::server {

/// Why an operation of a database failed.
enum class DatabaseError {
  none,
  busy,     ///< another process held its lock for too long
  damaged,  ///< the file is damaged; `Database::empty` can make it usable again
  other,    ///< it cannot be opened or written
};

/// A prepared statement, for repeated use. One that could not be prepared fails at its first step.
class Statement {
 public:
  enum class Step { row, done, failed };

  /// Binds a parameter, counted from 1. A text must stay valid during the next steps.
  Statement& bind(int parameter, std::int64_t integer);
  Statement& bind(int parameter, std::string_view text);

  /// Binds an object for a function that reads it by its type's name. It must outlive the steps.
  Statement& bind(int parameter, void* object, const char* type);

  Step step();

  /// Makes it ready to run again, and ends its read transaction.
  void reset();

  /// Makes one step and resets, for a statement without rows; false on failure.
  bool run();

  // A column of the current row, counted from 0. A text is valid until the next step.
  [[nodiscard]] std::int64_t integer(int column) const;
  [[nodiscard]] double real(int column) const;
  [[nodiscard]] std::string_view text(int column) const;

 private:
  friend class Database;
  struct Finalise {
    void operator()(sqlite3_stmt* statement) const;
  };
  Statement(sqlite3_stmt* statement, DatabaseError* error) : statement_(statement), error_(error) {}

  std::unique_ptr<sqlite3_stmt, Finalise> statement_;
  DatabaseError* error_;  ///< the database's
};

/// An open SQLite database. Not shared between threads; processes share its file.
class Database {
 public:
  /// Opens the file and creates it if it is missing. Statements wait `patience` for locks of
  /// others. Only the first statement shows whether the file is a database. No part of the path may
  /// be a symbolic link. Triggers and views in it are disabled, and a statement that takes too many
  /// steps is ended: both count as damage.
  static Database open(const std::string& path, std::chrono::milliseconds patience);

  static Database inMemory();

  /// How long statements wait for locks of others from now on; zero: not at all.
  void setPatience(std::chrono::milliseconds patience);

  /// Runs statements without rows; false when one failed.
  bool run(const char* statements);

  /// Begins a transaction, unless there is one: its statements all see the same state. It locks
  /// others out from writing as soon as it has read something. False when that failed.
  bool beginReading();

  /// Rolls the transaction back, if there is one.
  void rollBack();

  [[nodiscard]] Statement prepare(std::string_view statement);

  /// The number of rows that were added, changed or removed since it was opened.
  [[nodiscard]] std::int64_t totalChanges() const;

  /// For SQLite's own interface.
  [[nodiscard]] sqlite3* handle() const { return database_.get(); }

  /// Empties the database under its lock, even if it is damaged. Processes that have it open see an
  /// empty one.
  bool empty();

  /// Why the last failed operation failed.
  [[nodiscard]] DatabaseError error() const { return *error_; }

 private:
  struct Close {
    void operator()(sqlite3* database) const;
  };
  static Database openWith(const std::string& path, int flags);

  std::unique_ptr<sqlite3, Close> database_;
  std::unique_ptr<DatabaseError> error_ = std::make_unique<DatabaseError>(DatabaseError::none);
};

}  // namespace quillstead::server
