#pragma once

#include <string>
#include <string_view>
#include <vector>

/// How texts are taken apart for the index and for questions to it.
namespace quillstead::Words {

/// `text` with a blank around each character of the scripts that put none between words, so that
/// each counts as a word.
std::string spaced(std::string_view text);

/// The words of `text` that can tell one card from another, in lower case, each once, in their
/// order: no stop words, no single letters or digits. In scripts without blanks every two
/// neighbours are one such word, "東 京".
std::vector<std::string> telling(std::string_view text);

}  // namespace quillstead::Words
