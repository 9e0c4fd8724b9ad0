#pragma once

#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::JSONC {

/// The layout of a document, as far as its text shows it.
struct Layout {
  std::string lineEnd;     ///< the first one in the text: "\n", "\r\n" or "\r"
  std::string indent;      ///< of one level; two spaces if the text shows none
  std::string afterColon;  ///< a space or nothing
  std::string afterComma;  ///< between items on one line: a space or nothing

  static Layout of(const Document& document);

  /// `value` in this layout. `margin`: the indentation of the line on which the value begins; the
  /// value may then take several lines. Absent: it is written on one line.
  [[nodiscard]] std::string render(const JSON::Value& value,
                                   const std::optional<std::string>& margin) const;

  /// The same for a member with its key.
  [[nodiscard]] std::string render(std::string_view key, const JSON::Value& value,
                                   const std::optional<std::string>& margin) const;
};

/// The indentation of the line of `place`.
std::string marginAt(std::string_view text, std::size_t place);

/// Whether only white space is before `place` on its line.
bool beginsLine(std::string_view text, std::size_t place);

}  // namespace quillstead::JSONC
