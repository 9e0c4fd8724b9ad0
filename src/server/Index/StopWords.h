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

}  // namespace quillstead::server::StopWords

/// Words that say little about a prompt's topic, such as "fix", "test", "file" and "list".
namespace quillstead::server::CommonWords {

/// `word`: in lower case.
bool contains(std::string_view word);

}  // namespace quillstead::server::CommonWords
