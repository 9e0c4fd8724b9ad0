#pragma once

#include "server/Index/Database.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillstead::server {

/// Where a phrase is: the rows that have it, in order, and its places in each row.
struct Postings {
  struct Place {
    int column;
    int offset;  ///< in words
  };
  std::vector<std::int64_t> rows;
  std::vector<std::size_t> ends;  ///< for each row, the end of its places in `places`
  std::vector<Place> places;
};

/// Reads where phrases are in the full-text index.
class PhraseReader {
 public:
  /// Absent when the database failed.
  static std::optional<PhraseReader> of(Database& database);

  struct Found {
    std::size_t count = 0;  ///< how many rows have it, as far as they were counted
    bool isWhole = false;   ///< `postings` has all rows that have it
    Postings postings;
  };

  /// Reads the postings of one phrase, given as a search expression. Counting ends at `mostRows`,
  /// and earlier when the phrase seems to be in more rows than that: then only some postings are
  /// read. Absent when the database failed.
  std::optional<Found> read(const std::string& expression, std::size_t mostRows);

  /// The numbers of words and rows in the index. Known after the first phrase that was found.
  struct Totals {
    double words = 0;
    double rows = 0;
  };
  [[nodiscard]] Totals totals() const { return totals_; }

  /// The number of words in a row. Absent when the database failed.
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
