#pragma once

#include "support/Text/Character.h"

#include <string>
#include <string_view>
#include <vector>

/// The words of texts, as the index takes them and as it is asked for them.
namespace quillstead::server::Words {

/// A word in lower case.
std::string lowered(std::string_view word);

/// `text` as its words with a blank between each two, in the form in which the index takes them.
std::string indexed(std::string_view text);

/// A word to search for.
struct SearchTerm {
  std::string word;          ///< in lower case
  double says;               ///< how much it tells of what a prompt is about, from 0 to 1
  bool isBeginning = false;  ///< any word that begins so is meant
  Text::PairedScript script = Text::PairedScript::none;  ///< of a pair of neighbours

  bool operator==(const SearchTerm&) const = default;
};

/// The words of a prompt that can tell one card from another, each once, in their order: no stop
/// words, no single letters or digits. Only the first ones of a prompt that is very long.
std::vector<SearchTerm> searchTerms(std::string_view prompt);

}  // namespace quillstead::server::Words
