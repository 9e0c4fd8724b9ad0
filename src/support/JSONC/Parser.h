#pragma once

#include "support/JSONC/Document.h"

#include <cstddef>
#include <string_view>

/// Parses a text into the tree of its values.
namespace quillstead::JSONC {

/// White space and comments between values.
struct Trivia {
  std::size_t next;        ///< the first byte after it, or the end of the text
  std::size_t contentEnd;  ///< the end of the last comment; without one, the start of the trivia
  bool hasComment;
  bool endsWithLineComment;  ///< the last comment ends with its line
  bool isCut;                ///< a comment starts at `next` and is not closed
};

/// The white space and comments that start at `begin`.
Trivia skipTrivia(std::string_view text, std::size_t begin);

inline bool isLineEnd(char byte) { return byte == '\n' || byte == '\r'; }
inline bool isBlank(char byte) { return byte == ' ' || byte == '\t'; }

struct Failure {
  std::size_t place;  ///< in bytes
  std::string what;
};

/// Absent when there is no value in the text.
std::variant<std::optional<Node>, Failure> parse(std::string_view text);

/// A string of a document, without quotes and with escapes decoded.
std::string unescaped(std::string_view token);

}  // namespace quillstead::JSONC
