#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"
#include "server/Store/Scope.h"
#include "support/OS/Environment.h"

#include <chrono>
#include <cstddef>
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

/// What the cards are called.
struct Titles {
  std::vector<std::string> newest;  ///< the project's before the personal, the newest file first
  std::size_t total = 0;            ///< how many cards there are
};

/// What is known of the cards of one scope. It lives in a file of the cache directory that servers
/// share; while that cannot be used, in memory for one call.
class Index {
 public:
  /// How long opening an index may take on a store that changed. One file of the largest size goes
  /// over it by the time that it takes.
  struct Patience {
    std::chrono::milliseconds withOthers;  ///< until another server has written
    std::chrono::milliseconds withFiles;   ///< for looking at files and reading what changed
  };

  /// For an answer that is only worth having with the cards as they are.
  static constexpr Patience untilCardsAreKnown{.withOthers = std::chrono::milliseconds(500),
                                               .withFiles = std::chrono::milliseconds(600)};

  /// For an answer that must come at once and can do with some of the titles.
  static constexpr Patience withWhatIsKnown{.withOthers = std::chrono::milliseconds(50),
                                            .withFiles = std::chrono::milliseconds(100)};

  /// Opens the index and brings it up to date with the files. Where the patience does not last, it
  /// knows what it knew and what was read so far, and the next call goes on from there.
  static Index opened(const Scope& scope, const OS::Environment& environment, Patience patience);

  /// The cards that match the prompt, best first, at most `limit`.
  std::vector<CardPlace> search(std::string_view prompt, std::size_t limit);

  /// At most `limit` titles.
  Titles titles(std::size_t limit);

  /// The cards with exactly this title; else those whose title differs only in ASCII case.
  std::vector<CardPlace> withTitle(std::string_view title);

 private:
  Index(Survey survey, std::string path, Database database, Patience patience)
      : survey_(std::move(survey)),
        path_(std::move(path)),
        database_(std::move(database)),
        patience_(patience) {}

  template <typename Query>
  auto answerTo(const Query& query);
  void update();
  void openInMemory();
  bool bringUpToDate();

  Survey survey_;
  std::string path_;  ///< empty while it is in memory
  Database database_;
  Patience patience_;
};

}  // namespace quillstead::server
