#pragma once

#include <cstddef>
#include <string_view>

/// What stands between values: white space and comments.
namespace quillstead::JSONC {

struct Trivia {
  std::size_t next;        ///< the first byte behind it, or the text's end
  std::size_t contentEnd;  ///< behind the last comment; where it began when there is none
  bool hasComment;
  bool endsWithLineComment;  ///< the last comment reaches to the end of its line
  bool isCut;                ///< at `next` there is a comment that does not end
};

/// The white space and comments from `begin` on.
Trivia skipTrivia(std::string_view text, std::size_t begin);

inline bool isLineEnd(char byte) { return byte == '\n' || byte == '\r'; }
inline bool isBlank(char byte) { return byte == ' ' || byte == '\t'; }

}  // namespace quillstead::JSONC
