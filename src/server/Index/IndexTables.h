#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"
#include "server/Store/Card.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// The terms that are in more than half of the cards of a large store. The index keeps them until a
/// card changes, so that not every prompt has to count them. A term is stored as the expression
/// that searches for it.
class CommonTerms {
 public:
  CommonTerms() = default;

  /// `fingerprint`: of the files in the index. `text`: as `keep` wrote it.
  CommonTerms(std::int64_t fingerprint, std::string_view text)
      : fingerprint_(fingerprint), text_(text) {}

  [[nodiscard]] bool contain(std::string_view expression) const;

  void add(std::string_view expression);

  /// Writes the terms if any was added and the index still has the same files as when they were
  /// read. It does not wait for other servers. A failure does no harm: the terms are counted again.
  void keep(Database& database) const;

 private:
  std::int64_t fingerprint_ = 0;
  std::string text_;  ///< one term a line
  bool isNew_ = false;
};

}  // namespace quillstead::server

/// The tables of an index: a row for each known file, its words if it is a card, and the
/// fingerprint of all files.
namespace quillstead::server::IndexTables {

/// The version of the tables, of the tokenizer, and of how texts are split into words. It is part
/// of the file's name, so that versions of the server do not share an index. Raise it with every
/// change of these; a test fails if that was forgotten.
inline constexpr int version = 8;

/// A file as the index stores it. `store` is written as the number of its enumerator.
struct Row {
  std::int64_t id;
  Store::Kind store;
  std::string name;
  OS::FileStamp stamp;
};

/// Creates missing tables.
bool create(Database& database);

/// Creates the database index on titles, if it is missing. `create` leaves it out, because building
/// it once costs much less than updating it for each of many rows.
bool orderTitles(Database& database);

/// When the parts of the full-text index are merged.
enum class Merging {
  asItGrows,  ///< by itself, when several parts have the same size
  atTheEnd,   ///< only by `mergeSome`
};
bool setMerging(Database& database, Merging merging);

/// How many cards each store has, by the number of its enumerator.
using CardCounts = std::array<std::int64_t, 2>;

/// The state after the last update.
struct State {
  std::int64_t fingerprint = 0;  ///< of the files in the index
  bool isUnfinished = true;      ///< some files are not in it yet
  bool needsMerging = false;     ///< the full-text index has many parts, or words of removed rows
  std::optional<std::uint64_t> namesStamp;  ///< of the last survey that found nothing to do
  std::int64_t seenParts = 0;               ///< how many parts `SeenFiles` has of that survey
  CardCounts cards{};

  friend bool operator==(const State&, const State&) = default;
};

/// Absent when there is none or it cannot be read.
std::optional<State> state(Database& database);

/// `roots`: the directories of the existing stores. Forgets the common terms.
bool setState(Database& database, State state, const std::vector<std::string>& roots);

/// The stored roots; none when they cannot be read.
std::vector<std::string> roots(Database& database);

/// The cards of the state. Absent when there is none or it cannot be read. `common`: if given,
/// gets the state's common terms.
std::optional<CardCounts> cardCounts(Database& database, CommonTerms* common = nullptr);

/// The same, counted in the rows.
std::optional<CardCounts> countedCards(Database& database);

/// Does some of the merging: at its end the full-text index is in one part, and words of removed
/// rows are no longer in the file. True at the end; absent when the database failed.
std::optional<bool> mergeSome(Database& database);

/// Absent when they could not be read.
std::optional<std::vector<Row>> rows(Database& database);

/// Writes rows; create it once for many of them.
class Writer {
 public:
  /// `cards`: updated with the rows. It must outlive the writer.
  Writer(Database& database, CardCounts& cards);

  bool remove(std::int64_t id);

  /// `card`: null for a file that is not a card, so that it is not read again. `content`: a hash of
  /// the file's content.
  bool add(const Survey::File& file, const Card* card, std::uint64_t content);

  /// Updates the stamp of a file whose content is the same. False, with the row unchanged, when the
  /// content differs or the database failed.
  bool touch(std::int64_t id, OS::FileStamp stamp, std::uint64_t content);

 private:
  CardCounts& cards_;
  Statement removeFile_;
  Statement removeCard_;
  Statement addFile_;
  Statement addCard_;
  Statement touch_;
};

}  // namespace quillstead::server::IndexTables
