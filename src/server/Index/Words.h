#pragma once

#include "support/Text/Character.h"

#include <string>
#include <string_view>
#include <vector>

/// The words of texts, for indexing and for searching.
namespace quillstead::server::Words {

/// A word in lower case.
std::string lowered(std::string_view word);

/// The words of `text`, separated by spaces, as the index stores them.
std::string indexed(std::string_view text);

/// A word to search for.
struct SearchTerm {
  std::string word;          ///< in lower case
  double says;               ///< how much it says about the prompt's topic: 0 to 1
  bool isBeginning = false;  ///< matches any word that begins with it
  Text::PairedScript script = Text::PairedScript::none;  ///< of a pair of neighbours

  bool operator==(const SearchTerm&) const = default;
};

/// The words of a prompt to search for, each once, in order. Stop words and single letters and
/// digits are left out. Of a very long prompt only the first words are used.
std::vector<SearchTerm> searchTerms(std::string_view prompt);

}  // namespace quillstead::server::Words
