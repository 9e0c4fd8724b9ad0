#pragma once

#include "server/Index/Database.h"
#include "support/Text/Character.h"

#include <cstddef>
#include <cstdint>
#include <limits>
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

namespace quillstead::server::CardScores {

/// A term of the prompt, as the index knows it.
struct Phrase {
  double cards;               ///< how many have it, as far as they were counted
  double says;                ///< as a search term's
  Text::PairedScript script;  ///< as a search term's
  bool follows;               ///< in the prompt it comes just behind the phrase before it
  const Postings* postings;
};

/// The places of one phrase in a card.
struct Match {
  std::size_t phrase;
  std::size_t begin;  ///< among the phrase's places
  std::size_t end;
};

/// Visits the cards that have a leading phrase, in the order of their rows, each with its matches
/// of all phrases.
class Walk {
 public:
  /// `leading`: by phrase. Both must outlive the walk.
  Walk(const std::vector<Phrase>& phrases, const std::vector<bool>& leading);

  /// False behind the last card.
  bool step();

  [[nodiscard]] std::int64_t card() const { return card_; }

  /// In the order of their phrases.
  [[nodiscard]] const std::vector<Match>& matches() const { return matches_; }

 private:
  static constexpr std::int64_t none = std::numeric_limits<std::int64_t>::max();

  [[nodiscard]] std::int64_t row(std::size_t phrase) const;
  bool skipTo(std::size_t phrase);

  const std::vector<Phrase>& phrases_;
  const std::vector<bool>& leading_;
  std::vector<std::size_t> next_;   ///< for each phrase, where its next row is
  std::vector<std::int64_t> rows_;  ///< the next rows of the leading phrases
  std::int64_t card_ = 0;
  std::vector<Match> matches_;
};

}  // namespace quillstead::server::CardScores
