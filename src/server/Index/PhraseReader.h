#pragma once

#include "server/Index/Database.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillstead::server {

/// Where a phrase is: the rows that have it, in their order, and its places in each.
struct Postings {
  struct Place {
    int column;
    int offset;  ///< in words
  };
  std::vector<std::int64_t> rows;
  std::vector<std::size_t> ends;  ///< for each row, how many places it and those before it have
  std::vector<Place> places;
};

/// Reads where phrases are in the full-text index.
class PhraseReader {
 public:
  /// Absent when the database failed.
  static std::optional<PhraseReader> of(Database& database);

  struct Found {
    std::size_t count = 0;  ///< rows that have it, or the number at which counting ended
    bool isWhole = false;   ///< the postings are of all rows that have it
    Postings postings;
  };

  /// What an expression of one phrase finds. Counting ends at `mostRows`, and of a phrase that
  /// seems to be in more rows only some postings are read. Absent when the database failed.
  std::optional<Found> read(const std::string& expression, std::size_t mostRows);

  /// The words of all rows, and how many rows there are. Known once a phrase was found.
  struct Totals {
    double words = 0;
    double rows = 0;
  };
  [[nodiscard]] Totals totals() const { return totals_; }

  /// The words of a row. Absent when the database failed.
  std::optional<double> lengthOf(std::int64_t row);

 private:
  friend struct PhraseReading;

  PhraseReader(Statement find, Statement length)
      : find_(std::move(find)), length_(std::move(length)) {}

  Statement find_;
  Statement length_;
  Totals totals_;
};

}  // namespace quillstead::server
