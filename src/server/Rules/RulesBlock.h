#pragma once

#include "server/Index/Index.h"
#include "server/Shown.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::server {

/// Rules and an index in one fence. All sizes are bytes.
struct RulesBlock {
  std::string text;                      ///< empty when there are no rules and no index
  std::optional<std::size_t> indexSpan;  ///< the index's size; absent when there is none

  /// An empty `index` is left out.
  static RulesBlock fenced(std::string_view rules, std::string_view index);

  /// Adds a paragraph at the end of the rules, before the index.
  void closeHeadWith(std::string_view note);

  /// The list of titles at the end of a block, which tells the agent what it can ask for. At most
  /// `limit` bytes: a heading with the number of cards, a line for each title that fits, and the
  /// number of the others. Empty when there are no cards or no title fits.
  static std::string index(const Titles& titles, std::size_t limit);

  /// The most bytes of an index, unless the caller asks for less.
  static constexpr std::size_t ordinaryIndex = 6'000;

  /// A title that does not fit is skipped. The list ends after this many skipped titles.
  static constexpr std::size_t mostSkipped = 20;

  /// No index of ordinary size needs titles behind so many bytes, each counted with its line end.
  static constexpr std::size_t enoughOfTitles =
      ordinaryIndex + mostSkipped * (Shown::longestLine + 1);

  /// Bytes that the fence adds to rules, and that an index adds besides its own.
  static const std::size_t fenceSize;
  static constexpr std::size_t lineBeforeIndex = 1;
  static constexpr std::size_t gapBeforeNote = 2;
};

}  // namespace quillstead::server
