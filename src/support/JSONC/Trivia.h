#pragma once

#include <cstddef>
#include <string_view>

/// White space and comments between values.
namespace quillstead::JSONC {

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

}  // namespace quillstead::JSONC
