#pragma once

#include "server/Index/Database.h"
#include "server/Index/IndexTables.h"
#include "server/Index/Survey.h"
#include "server/Index/Words.h"
#include "server/Store/Scope.h"
#include "support/OS/Environment.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::server {

/// Where a card is.
struct CardPlace {
  Store::Kind store;
  std::string fileName;
};

/// The titles of cards.
struct Titles {
  /// The project's before the personal, the newest file first, each as `Shown::line` gives it.
  std::vector<std::string> newest;
  std::size_t total = 0;  ///< how many cards there are
};

/// The index of the cards of one scope: a file in the cache directory, shared by all servers. If
/// the file cannot be used, it is in memory, for one call.
class Index {
 public:
  /// How long opening an index may take after changes. Reading one file may come on top.
  struct Patience {
    std::chrono::milliseconds withOthers;  ///< until another server has written
    std::chrono::milliseconds withFiles;   ///< for looking at files and reading what changed
  };

  /// For an answer that needs the current cards.
  static constexpr Patience untilCardsAreKnown{.withOthers = std::chrono::milliseconds(500),
                                               .withFiles = std::chrono::milliseconds(600)};

  /// For an answer that must be quick and may lack some titles.
  static constexpr Patience withWhatIsKnown{.withOthers = std::chrono::milliseconds(50),
                                            .withFiles = std::chrono::milliseconds(100)};

  /// Opens the index and updates it from the files. If the time is too short, the update is
  /// incomplete, and the next call continues it.
  static Index opened(const Scope& scope, const OS::Environment& environment, Patience patience);

  /// The cards that match a prompt with these terms, best first, at most `limit`.
  std::vector<CardPlace> search(const std::vector<Words::SearchTerm>& terms, std::size_t limit);

  /// The first titles: all, or so many that they have `enough` bytes, each counted with its line
  /// end.
  Titles titles(std::size_t enough);

  /// The cards with exactly this title; else those whose title differs only in ASCII case.
  std::vector<CardPlace> withTitle(std::string_view title);

 private:
  Index(Survey survey, std::string path, Database database, Patience patience)
      : survey_(std::move(survey)),
        path_(std::move(path)),
        database_(std::move(database)),
        patience_(patience) {}

  template <typename Query>
  auto resultOf(const Query& query);
  void update();
  void openInMemory();
  bool bringUpToDate();

  Survey survey_;
  std::string path_;  ///< empty while it is in memory
  Database database_;
  Patience patience_;
};

}  // namespace quillstead::server

/// Queries of an index. Each result is absent when the database failed.
namespace quillstead::server::IndexQueries {

/// The cards for a prompt's terms, at most `limit`, ranked over all cards. Words in the title weigh
/// most, then tags, then the body. Equal ranks are ordered by store, the project first, then by
/// file name. Cards far worse than the best are left out. At least two cards of each store are kept
/// if they match. `common`: gets those of the index, and what this search found out.
std::optional<std::vector<CardPlace>> search(Database& database,
                                             const std::vector<Words::SearchTerm>& terms,
                                             std::size_t limit, CommonTerms& common);

/// As `Index::titles`.
std::optional<Titles> titles(Database& database, std::size_t enough);

std::optional<std::vector<CardPlace>> withTitle(Database& database, std::string_view title,
                                                std::size_t limit);

}  // namespace quillstead::server::IndexQueries
