#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace quillstead {

/// Why an operation of a database failed.
enum class DatabaseTrouble {
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

  Step step();

  /// Makes it ready to run again, and ends the reading that it may have begun.
  void reset();

  /// Binds, runs to the end and resets; false when that failed.
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
  Statement(sqlite3_stmt* statement, DatabaseTrouble* trouble)
      : statement_(statement), trouble_(trouble) {}

  std::unique_ptr<sqlite3_stmt, Finalise> statement_;
  DatabaseTrouble* trouble_;  ///< the database's
};

/// An open SQLite database. Not shared between threads; processes share its file.
class Database {
 public:
  /// Opens the file, made when missing; statements wait `patience` for others' locks. Whether it
  /// really is a database shows at the first statement.
  static Database open(const std::string& path, std::chrono::milliseconds patience);

  static Database inMemory();

  /// From now on statements wait that long for others' locks; zero: not at all.
  void setPatience(std::chrono::milliseconds patience);

  /// Runs statements that give no rows; false when one failed.
  bool run(const char* statements);

  /// Ends the transaction, when there is one, without its changes.
  void rollBack();

  [[nodiscard]] Statement prepare(std::string_view statement);

  /// Empties the database under its lock, however damaged it is; others that have it open see an
  /// empty one.
  bool empty();

  /// Why the operation that failed last did so.
  [[nodiscard]] DatabaseTrouble trouble() const { return *trouble_; }

 private:
  struct Close {
    void operator()(sqlite3* database) const;
  };
  static Database openWith(const std::string& path, int flags);

  std::unique_ptr<sqlite3, Close> database_;
  std::unique_ptr<DatabaseTrouble> trouble_ =
      std::make_unique<DatabaseTrouble>(DatabaseTrouble::none);
};

}  // namespace quillstead
