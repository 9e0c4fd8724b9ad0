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
  busy,     ///< another process kept its lock for too long
  damaged,  ///< the file is not what it should be: `Database::empty` can make it usable again
  other,    ///< it cannot be reached or written
};

/// One statement of a database, run again and again. A statement that could not be prepared fails
/// at its first step.
class Statement {
 public:
  enum class Step { row, done, failed };

  /// Binds a parameter, counted from 1. A text must outlive the next steps.
  Statement& bind(int parameter, std::int64_t integer);
  Statement& bind(int parameter, std::string_view text);

  /// Binds an object for a function that asks for it by its type's name. It must outlive the steps.
  Statement& bind(int parameter, void* object, const char* type);

  Step step();

  /// Makes it ready to run again, and ends the reading that it may have begun.
  void reset();

  /// Makes one step, which is all that a statement without rows needs, and resets; false when it
  /// failed.
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
  /// Opens the file, made when missing; statements wait `patience` for others' locks. Whether it
  /// really is a database shows at the first statement. No part of the path may be a symbolic link.
  /// Triggers and views in it do nothing, and a statement that does not end is ended: both count as
  /// damage.
  static Database open(const std::string& path, std::chrono::milliseconds patience);

  static Database inMemory();

  /// From now on statements wait that long for others' locks; zero: not at all.
  void setPatience(std::chrono::milliseconds patience);

  /// Runs statements that give no rows; false when one failed.
  bool run(const char* statements);

  /// Ends the transaction, when there is one, without its changes.
  void rollBack();

  [[nodiscard]] Statement prepare(std::string_view statement);

  /// How many rows all statements together have added, changed or removed since it was opened.
  [[nodiscard]] std::int64_t totalChanges() const;

  /// For what only SQLite's own interface offers.
  [[nodiscard]] sqlite3* handle() const { return database_.get(); }

  /// Empties the database under its lock, however damaged it is; others that have it open see an
  /// empty one.
  bool empty();

  /// Why the operation that failed last did so.
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
