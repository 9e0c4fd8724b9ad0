#include "server/Index/KoreanParticles.h"

#include "server/Index/WordList.h"
#include "support/Text/Text.h"

namespace quillstead::server::KoreanParticles {

namespace {

/// Others, such as "이" and "의", also end many nouns of two syllables.
constexpr std::string_view particles = "는 를 만 에 은 을";

constexpr std::string_view nounsThatEndAlike = "가을 고을 그만 낭만 노을 마을 불만 오만 자만 지은";

}  // namespace

std::string_view stemOf(std::string_view word) {
  const std::string_view first = word.substr(0, Text::decodeFirst(word).length);
  const std::string_view second = word.substr(first.size());
  const bool isParticle = WordList<particles>::contains(second);
  return isParticle && !WordList<nounsThatEndAlike>::contains(word) ? first : std::string_view();
}

}  // namespace quillstead::server::KoreanParticles
