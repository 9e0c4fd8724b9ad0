#pragma once

#include <string_view>

/// The particles of Korean, which are written behind a word without a space between.
namespace quillstead::server::KoreanParticles {

/// The first syllable of a word that has two, of which the second is a particle or the ending of a
/// verb: "짐" of "짐만", "좁" of "좁은". Empty for any other word.
std::string_view stemOf(std::string_view word);

}  // namespace quillstead::server::KoreanParticles
