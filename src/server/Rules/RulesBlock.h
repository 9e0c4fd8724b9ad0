#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead {

/// Rules and an index in one fence. All sizes are bytes.
struct RulesBlock {
  std::string text;                      ///< empty when there is nothing to tell
  std::optional<std::size_t> indexSpan;  ///< the index's size; absent when there is none

  /// An empty `index` is left out.
  static RulesBlock fenced(std::string_view rules, std::string_view index);

  /// What the fence adds to rules without an index, and what an index adds besides itself.
  static const std::size_t fenceSize;
  static constexpr std::size_t lineBeforeIndex = 1;
};

}  // namespace quillstead
