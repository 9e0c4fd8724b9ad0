#pragma once

#include "support/Text/Character.h"

#include <functional>
#include <string_view>

/// Splits a text into words.
///
/// A word is a run of letters, digits and marks. A name from a program is a word as a whole and so
/// are its parts: "fetchWithRetry" and "fetch_with_retry" are both "fetchwithretry", apart from
/// case. "read-only" is "read", "only" and "readonly"; "1.12" is "1", "12" and "1.12". In scripts
/// without spaces between words, every two neighbouring characters are a word, and so is the last
/// character of a run.
namespace quillstead::server::WordSplitter {

struct Word {
  enum class Kind {
    whole,
    part,  ///< of a name written as one word
    run,   ///< not a word: the text in which the next words are
    pair,  ///< two neighbours
    last,  ///< the last of a run of neighbours
    only,  ///< one that has no neighbour
  };
  std::string_view text;  ///< in its original case; valid during the call
  Kind kind = Kind::whole;
  Text::PairedScript script = Text::PairedScript::none;     ///< of a pair's first character
  Text::PairedScript neighbour = Text::PairedScript::none;  ///< of its second
};

/// Calls `take` with each word, in order. The parts of a name come after the name.
void split(std::string_view text, const std::function<void(const Word&)>& take);

}  // namespace quillstead::server::WordSplitter
