#pragma once

#include "server/Index/Index.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::server {

/// Rules and an index in one fence. All sizes are bytes.
struct RulesBlock {
  std::string text;                      ///< empty when there is nothing to tell
  std::optional<std::size_t> indexSpan;  ///< the index's size; absent when there is none

  /// An empty `index` is left out.
  static RulesBlock fenced(std::string_view rules, std::string_view index);

  /// Adds a paragraph at the end of the rules, before the index.
  void closeHeadWith(std::string_view note);

  /// The list of titles that closes a block, so that the agent knows what it can ask for. At most
  /// `limit` bytes: a heading with the number of cards and a line for each title, as many as fit,
  /// then how many more there are. Empty when there are no cards or not one title fits.
  static std::string index(const Titles& titles, std::size_t limit);

  /// The most bytes an index takes when nothing smaller is asked for.
  static constexpr std::size_t ordinaryIndex = 6'000;

  /// What the fence adds to rules without an index, and what an index adds besides itself.
  static const std::size_t fenceSize;
  static constexpr std::size_t lineBeforeIndex = 1;
  static constexpr std::size_t gapBeforeNote = 2;
};

}  // namespace quillstead::server
