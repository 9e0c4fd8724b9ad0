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

/// The particles of Korean, which are written behind a word without a space between.
namespace quillstead::server::KoreanParticles {

/// The first syllable of a word that has two, of which the second is a particle or the ending of a
/// verb: "짐" of "짐만", "좁" of "좁은". Empty for any other word.
std::string_view stemOf(std::string_view word);

}  // namespace quillstead::server::KoreanParticles
