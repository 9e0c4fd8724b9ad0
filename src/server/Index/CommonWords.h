#pragma once

#include <string_view>

/// Words that say little about a prompt's topic, such as "fix", "test", "file" and "list".
namespace quillstead::server::CommonWords {

/// `word`: in lower case.
bool contains(std::string_view word);

/// Whether `phrase` is one, in a script without spaces between words.
bool containsPhrase(std::string_view phrase);

}  // namespace quillstead::server::CommonWords
