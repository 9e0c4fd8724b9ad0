#pragma once

#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::JSONC {

/// How a document is laid out, as far as its own text shows it.
struct Layout {
  std::string lineEnd;     ///< "\n", "\r\n" or "\r": its first one
  std::string indent;      ///< of one level: two blanks where nothing shows it
  std::string afterColon;  ///< a blank or nothing
  std::string afterComma;  ///< between items on one line: a blank or nothing

  static Layout of(const Document& document);

  /// `value` in this layout. `margin`: the white space that the line begins with on which the value
  /// does; the value then takes as many lines as it needs. Absent: all of it on one line.
  [[nodiscard]] std::string render(const JSON::Value& value,
                                   const std::optional<std::string>& margin) const;

  /// A member with its key, likewise.
  [[nodiscard]] std::string render(std::string_view key, const JSON::Value& value,
                                   const std::optional<std::string>& margin) const;
};

/// The white space that the line of `place` begins with.
std::string marginAt(std::string_view text, std::size_t place);

/// Whether there is nothing but white space before `place` in its line.
bool beginsLine(std::string_view text, std::size_t place);

}  // namespace quillstead::JSONC
