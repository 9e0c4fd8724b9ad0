#pragma once

#include "support/JSONC/Document.h"

/// Parses a text into the tree of its values.
namespace quillstead::JSONC {

struct Failure {
  std::size_t place;  ///< in bytes
  std::string what;
};

/// Absent when there is no value in the text.
std::variant<std::optional<Node>, Failure> parse(std::string_view text);

/// A string of a document, without quotes and with escapes decoded.
std::string unescaped(std::string_view token);

}  // namespace quillstead::JSONC
