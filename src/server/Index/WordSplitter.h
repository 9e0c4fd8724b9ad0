#pragma once

#include "support/Text/Character.h"

#include <functional>
#include <string_view>

/// Takes a text apart into words.
///
/// A word is a run of letters, digits and marks. A name from a program is a word as a whole and so
/// are its parts: "fetchWithRetry" and "fetch_with_retry" both are "fetchwithretry", but for case.
/// "read-only" is "read", "only" and "readonly", and "1.12" is "1", "12" and "1.12". In scripts
/// whose words spaces do not tell apart, every two neighbours are a word, and so is the last
/// character of a run.
namespace quillstead::server::WordSplitter {

struct Word {
  enum class Kind {
    whole,
    part,  ///< of a name written as one word
    run,   ///< no word: those that follow are taken from it, and lie in its text
    pair,  ///< two neighbours
    last,  ///< the last of a run of neighbours
    only,  ///< one that has no neighbour
  };
  std::string_view text;  ///< in the case in which it was written; valid during the call
  Kind kind = Kind::whole;
  Text::PairedScript script = Text::PairedScript::none;     ///< of a pair's first character
  Text::PairedScript neighbour = Text::PairedScript::none;  ///< of its second
};

/// Gives the words in their order, the parts of a name after it.
void split(std::string_view text, const std::function<void(const Word&)>& take);

}  // namespace quillstead::server::WordSplitter
