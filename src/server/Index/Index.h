#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"
#include "server/Store/Scope.h"
#include "support/OS/Environment.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

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

/// What is known of the cards of one scope, as new as the files. It lives in a file of the cache
/// directory that servers share; while that cannot be used, in memory for one call.
class Index {
 public:
  /// Looks at the files and reads what changed. Waits for other servers and for large changes at
  /// most about a second; then it may know less than all cards.
  Index(const Scope& scope, const OS::Environment& environment);

  /// The cards that match the prompt, best first, at most `limit`.
  std::vector<CardPlace> search(std::string_view prompt, std::size_t limit);

  /// At most `limit` titles.
  Titles titles(std::size_t limit);

  /// The cards with exactly this title; else those whose title differs only in ASCII case.
  std::vector<CardPlace> withTitle(std::string_view title);

 private:
  template <typename Answer>
  Answer answered(std::optional<Answer> (*question)(Database&, std::string_view, std::size_t),
                  std::string_view text, std::size_t limit);
  void openInMemory();
  bool bringUpToDate();

  Survey survey_;
  std::string path_;  ///< empty when there is no cache directory
  Database database_;
  bool inMemory_ = false;
};

}  // namespace quillstead
