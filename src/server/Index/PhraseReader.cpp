#include "server/Index/PhraseReader.h"

#include <sqlite3.h>

#include <algorithm>
#include <string_view>

namespace quillstead::server {

namespace {

constexpr const char* functionName = "phrasePlaces";
constexpr const char* pointerType = "quillstead-reading";

/// After this many rows the number of all rows with a phrase is estimated.
constexpr std::size_t fewRows = 64;

/// The extension interface of FTS5; null when this SQLite has none.
fts5_api* interfaceOf(Database& database) {
  fts5_api* api = nullptr;
  Statement read = database.prepare("SELECT fts5(?)");
  read.bind(1, static_cast<void*>(&api), "fts5_api_ptr").step();
  return api;
}

/// Removes a number in FTS5's variable-length format from the front, and returns it.
std::uint64_t takeNumber(std::string_view& bytes) {
  constexpr unsigned more = 0x80;
  std::uint64_t number = 0;
  while (!bytes.empty()) {
    const auto byte = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    number = number << 7U | (byte & ~more);
    if ((byte & more) == 0) break;
  }
  return number;
}

}  // namespace

/// Reads one phrase. A SQL query would run SQLite's virtual machine for every row. So the query
/// stops at the first row and calls a function, which reads all rows through FTS5's interface.
struct PhraseReading {
  PhraseReader::Totals& totals;
  std::size_t mostRows;
  PhraseReader::Found found;

  static void run(const Fts5ExtensionApi* api, Fts5Context* context, sqlite3_context* result,
                  int count, sqlite3_value** values) {
    auto* const reading =
        count == 1 ? static_cast<PhraseReading*>(sqlite3_value_pointer(values[0], pointerType))
                   : nullptr;
    if (!reading) {
      sqlite3_result_error(result, "phrasePlaces needs its reading", -1);
      return;
    }
    sqlite3_int64 rows = 0;
    sqlite3_int64 words = 0;
    api->xRowCount(context, &rows);
    api->xColumnTotalSize(context, -1, &words);
    reading->totals = {.words = static_cast<double>(words), .rows = static_cast<double>(rows)};
    const int status = api->xQueryPhrase(context, 0, reading, &visit);
    if (status != SQLITE_OK) sqlite3_result_error_code(result, status);
  }

  static int visit(const Fts5ExtensionApi* api, Fts5Context* context, void* data) {
    PhraseReading& reading = *static_cast<PhraseReading*>(data);
    PhraseReader::Found& found = reading.found;
    ++found.count;
    if (found.isWhole) {
      const int status = place(api, context, found.postings);
      if (status != SQLITE_OK) return status;
      found.isWhole = found.count != fewRows || reading.seemsRare();
    }
    if (found.count < reading.mostRows) return SQLITE_OK;
    found.isWhole = false;
    return SQLITE_DONE;
  }

  /// After the first rows: false when the phrase seems to be in more than half of all rows. Their
  /// numbers have few gaps.
  [[nodiscard]] bool seemsRare() const {
    constexpr std::int64_t sevenTenths = 7;
    constexpr std::int64_t ten = 10;
    const std::int64_t last = found.postings.rows.back();
    return mostRows >= static_cast<std::size_t>(totals.rows) ||
           static_cast<std::int64_t>(fewRows) * ten < last * sevenTenths;
  }

  static int place(const Fts5ExtensionApi* api, Fts5Context* context, Postings& postings) {
    postings.rows.push_back(api->xRowid(context));
    Fts5PhraseIter next{};
    int column = 0;
    int offset = 0;
    const int status = api->xPhraseFirst(context, 0, &next, &column, &offset);
    for (; status == SQLITE_OK && column >= 0; api->xPhraseNext(context, &next, &column, &offset)) {
      postings.places.push_back({.column = column, .offset = offset});
    }
    postings.ends.push_back(postings.places.size());
    return status;
  }
};

std::optional<PhraseReader> PhraseReader::of(Database& database) {
  fts5_api* const api = interfaceOf(database);
  if (!api ||
      api->xCreateFunction(api, functionName, nullptr, &PhraseReading::run, nullptr) != SQLITE_OK) {
    return std::nullopt;
  }
  return PhraseReader(
      database.prepare("SELECT phrasePlaces(cards, ?2) FROM cards WHERE cards MATCH ?1 LIMIT 1"),
      database.prepare("SELECT sz FROM cards_docsize WHERE id = ?"));
}

std::optional<PhraseReader::Found> PhraseReader::read(const std::string& expression,
                                                      std::size_t mostRows) {
  PhraseReading reading{
      .totals = totals_, .mostRows = mostRows, .found = {.isWhole = true, .postings = {}}};
  const Statement::Step step = find_.bind(1, expression).bind(2, &reading, pointerType).step();
  find_.reset();
  if (step == Statement::Step::failed) return std::nullopt;
  return std::move(reading.found);
}

std::optional<double> PhraseReader::lengthOf(std::int64_t row) {
  if (length_.bind(1, row).step() != Statement::Step::row) return std::nullopt;
  double words = 0;
  for (std::string_view sizes = length_.text(0); !sizes.empty();) {
    words += static_cast<double>(takeNumber(sizes));
  }
  length_.reset();
  return words;
}

}  // namespace quillstead::server

namespace quillstead::server::CardScores {

Walk::Walk(const std::vector<Phrase>& phrases, const std::vector<bool>& leading)
    : phrases_(phrases), leading_(leading), next_(phrases.size()) {
  for (std::size_t phrase = 0; phrase < phrases.size(); ++phrase) {
    rows_.push_back(leading_[phrase] ? row(phrase) : none);
  }
}

bool Walk::step() {
  matches_.clear();
  card_ = none;
  for (const std::int64_t row : rows_) card_ = std::min(card_, row);
  if (card_ == none) return false;
  for (std::size_t phrase = 0; phrase < rows_.size(); ++phrase) {
    if (leading_[phrase] ? rows_[phrase] != card_ : !skipTo(phrase)) continue;
    const std::vector<std::size_t>& ends = phrases_[phrase].postings->ends;
    const std::size_t at = next_[phrase]++;
    matches_.push_back({.phrase = phrase, .begin = at == 0 ? 0 : ends[at - 1], .end = ends[at]});
    if (leading_[phrase]) rows_[phrase] = row(phrase);
  }
  return true;
}

/// The phrase's next row; `none` behind the last.
std::int64_t Walk::row(std::size_t phrase) const {
  const std::vector<std::int64_t>& rows = phrases_[phrase].postings->rows;
  return next_[phrase] < rows.size() ? rows[next_[phrase]] : none;
}

/// Moves to the phrase's first row at or behind the card; true when it is the card's own.
bool Walk::skipTo(std::size_t phrase) {
  const std::vector<std::int64_t>& rows = phrases_[phrase].postings->rows;
  std::size_t begin = next_[phrase];
  std::size_t width = 1;  // the row is likely to be near
  while (begin + width < rows.size() && rows[begin + width] < card_) {
    begin += width;
    width *= 2;
  }
  const auto at = [&rows](std::size_t place) {
    return rows.begin() + static_cast<std::ptrdiff_t>(std::min(place, rows.size()));
  };
  next_[phrase] = static_cast<std::size_t>(
      std::lower_bound(at(begin), at(begin + width + 1), card_) - rows.begin());
  return row(phrase) == card_;
}

}  // namespace quillstead::server::CardScores
