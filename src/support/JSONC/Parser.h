#pragma once

#include "support/JSONC/Document.h"

/// From a text to the tree of its values.
namespace quillstead::JSONC {

struct Failure {
  std::size_t place;  ///< in bytes
  std::string what;
};

/// Absent when there is no value in the text.
std::variant<std::optional<Node>, Failure> parse(std::string_view text);

/// A string of a document without its quotes and escapes.
std::string unescaped(std::string_view token);

}  // namespace quillstead::JSONC
