#pragma once

#include <cstdint>
#include <string_view>

/// Words that are so common in a language that they are not searched for.
namespace quillstead::server::StopWords {

/// A set of languages, one bit each.
using Languages = std::uint32_t;

inline constexpr Languages english = 1;

/// The languages in which `word`, in lower case, is a stop word.
Languages languagesOf(std::string_view word);

/// Whether `phrase` is one, in a script without spaces between words.
bool containsPhrase(std::string_view phrase);

}  // namespace quillstead::server::StopWords
