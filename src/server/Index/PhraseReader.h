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

  /// False when places were read of the first rows only.
  [[nodiscard]] bool areWhole() const { return ends.size() == rows.size(); }
};

/// Reads where phrases are in the full-text index.
class PhraseReader {
 public:
  /// Absent when the database failed.
  static std::optional<PhraseReader> of(Database& database);

  /// What an expression of one phrase finds: the first `mostRows` rows that have it, and the places
  /// in the first `mostPlaced` of them. Absent when the database failed.
  std::optional<Postings> read(const std::string& expression, std::size_t mostRows,
                               std::size_t mostPlaced);

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
