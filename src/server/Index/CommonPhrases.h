#pragma once

#include <string_view>
#include <vector>

/// Stop words and common words, in scripts without spaces between words.
namespace quillstead::server::CommonPhrases {

enum class Saying { nothing, little, something };

/// For each byte of a run of such characters, whether it belongs to a phrase that says nothing
/// ("please", "how", "is") or little ("test", "file") about the prompt's topic.
std::vector<Saying> sayings(std::string_view run);

}  // namespace quillstead::server::CommonPhrases
