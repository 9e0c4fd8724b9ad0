#include "server/Index/Words.h"

#include "server/Index/CommonWords.h"
#include "server/Index/Ranking.h"
#include "server/Index/StopWords.h"
#include "server/Index/WordList.h"
#include "server/Index/WordSplitter.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <unordered_map>

namespace quillstead::server::Words {

namespace {

using Text::PairedScript;
using WordSplitter::Word;

bool isOneCharacter(std::string_view word) {
  return !word.empty() && Text::decodeFirst(word).length == word.size();
}

double pairSays(PairedScript script, PairedScript neighbour) {
  if (script != neighbour) return Ranking::otherPair;
  switch (script) {
    case PairedScript::han:
      return Ranking::pairOfHan;
    case PairedScript::hangul:
      return Ranking::pairOfHangul;
    case PairedScript::hiragana:
      return Ranking::pairOfHiragana;
    case PairedScript::alphabet:
      return Ranking::pairOfAlphabet;
    case PairedScript::katakana:
    case PairedScript::none:
      break;
  }
  return Ranking::otherPair;
}

/// What a phrase says about the prompt's topic.
enum class Saying {
  nothing,  ///< "please", "how", "is"
  little,   ///< "test", "file"
  something
};

Saying sayingOf(std::string_view phrase) {
  if (StopWords::containsPhrase(phrase)) return Saying::nothing;
  return CommonWords::containsPhrase(phrase) ? Saying::little : Saying::something;
}

/// For each byte of a run of characters, in a script without spaces between words, the least that a
/// phrase with it says.
std::vector<Saying> sayings(std::string_view run) {
  constexpr std::size_t longestPhrase = 6;  // characters; longer ones are not in the lists
  std::vector<Saying> all(run.size(), Saying::something);
  for (std::size_t begin = 0; begin < run.size();) {
    std::size_t end = begin;
    for (std::size_t length = 0; length < longestPhrase && end < run.size(); ++length) {
      end += Text::decodeFirst(run.substr(end)).length;
      const Saying saying = sayingOf(run.substr(begin, end - begin));
      if (saying == Saying::something) continue;
      for (std::size_t at = begin; at < end; ++at) all[at] = std::min(all[at], saying);
    }
    begin += Text::decodeFirst(run.substr(begin)).length;
  }
  return all;
}

/// Korean particles, which follow a word without a space between. Others, such as "이" and "의",
/// also end many nouns of two syllables.
constexpr std::string_view koreanParticles = "는 를 만 에 은 을";

constexpr std::string_view koreanNounsThatEndAlike =
    "가을 고을 그만 낭만 노을 마을 불만 오만 자만 지은";

/// The first syllable of a word that has two, of which the second is a particle or the ending of a
/// verb: "짐" of "짐만", "좁" of "좁은". Empty for any other word.
std::string_view stemOfKorean(std::string_view word) {
  const std::string_view first = word.substr(0, Text::decodeFirst(word).length);
  const bool hasParticle = WordList<koreanParticles>::contains(word.substr(first.size()));
  const bool isWhole = WordList<koreanNounsThatEndAlike>::contains(word);
  return hasParticle && !isWhole ? first : std::string_view();
}

/// Collects the terms of a prompt, with the stop words of all languages.
class Gatherer {
 public:
  void take(const Word& word) {
    switch (word.kind) {
      case Word::Kind::whole:
      case Word::Kind::part:
        takeWord(word);
        break;
      case Word::Kind::run:
        run_ = word.text;
        sayings_ = sayings(word.text);
        break;
      case Word::Kind::pair:
        takePair(word, pairSays(word.script, word.neighbour), false);
        break;
      case Word::Kind::only:
        takePair(word, Ranking::commonWord, true);
        break;
      case Word::Kind::last:
        break;
    }
  }

  /// Leaves out the stop words of English, and of the language that most words of the prompt are
  /// from.
  std::vector<SearchTerm> finish() {
    const StopWords::Languages spoken = StopWords::english | mostSpoken();
    std::vector<SearchTerm> terms;
    for (Found& one : found_) {
      if ((one.stopWordIn & spoken) == 0) terms.push_back(std::move(one.term));
    }
    return terms;
  }

 private:
  struct Found {
    SearchTerm term;
    StopWords::Languages stopWordIn = 0;
  };

  void add(Found found) {
    const auto [place, isNew] = places_.emplace(found.term.word, found_.size());
    if (isNew) {
      found_.push_back(std::move(found));
    } else {
      double& says = found_[place->second].term.says;
      says = std::max(says, found.term.says);
    }
  }

  void takeWord(const Word& word) {
    std::string text = lowered(word.text);
    const StopWords::Languages stopWordIn = StopWords::languagesOf(text);
    if (isOneCharacter(text) && stopWordIn == 0) return;
    double says = word.kind == Word::Kind::part ? Ranking::partOfName : Ranking::ordinaryWord;
    if (CommonWords::contains(text)) says = std::min(says, Ranking::commonWord);
    if (isOneCharacter(text)) says = 0;
    add({.term = {.word = std::move(text), .says = says}, .stopWordIn = stopWordIn});
  }

  /// Leaves out a pair within a phrase that says nothing. A pair that overlaps one counts half. Of
  /// a Korean word of one syllable and a particle only the syllable is searched for.
  void takePair(const Word& word, double says, bool isBeginning) {
    const auto at = static_cast<std::size_t>(word.text.data() - run_.data());
    const Saying first = sayings_[at];
    const Saying second = sayings_[at + word.text.size() - 1];
    if (std::max(first, second) == Saying::nothing) return;
    constexpr double half = 0.5;
    if (std::min(first, second) == Saying::nothing) says *= half;
    if (std::max(first, second) == Saying::little) says *= half;
    SearchTerm term{.word = std::string(word.text),
                    .says = says,
                    .isBeginning = isBeginning,
                    .script = isBeginning ? PairedScript::none : word.script};
    const std::string_view stem = word.text == run_ ? stemOfKorean(run_) : std::string_view();
    if (!stem.empty()) {
      term.word = stem;
      term.says = std::min(says, Ranking::commonWord);
      term.isBeginning = true;
    }
    add({.term = std::move(term)});
  }

  [[nodiscard]] StopWords::Languages mostSpoken() const {
    constexpr std::size_t bits = 32;
    std::array<std::size_t, bits> counts{};
    for (const Found& one : found_) {
      for (StopWords::Languages left = one.stopWordIn; left != 0; left &= left - 1) {
        ++counts.at(static_cast<std::size_t>(std::countr_zero(left)));
      }
    }
    const std::size_t most = *std::max_element(counts.begin(), counts.end());
    StopWords::Languages languages = 0;
    for (std::size_t bit = 0; bit < bits && most > 0; ++bit) {
      if (counts.at(bit) == most) languages |= StopWords::Languages{1} << bit;
    }
    return languages;
  }

  std::string_view run_;
  std::vector<Saying> sayings_;  ///< of the run's bytes
  std::vector<Found> found_;
  std::unordered_map<std::string, std::size_t> places_;  ///< in `found_`
};

}  // namespace

std::string lowered(std::string_view word) {
  const auto isBeyondASCII = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
  // Most words are ASCII as a whole.
  std::string result(word.begin(), std::find_if(word.begin(), word.end(), isBeyondASCII));
  for (char& letter : result) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  word.remove_prefix(result.size());
  while (!word.empty()) {
    const Text::Decoded next = Text::decodeFirst(word);
    const char32_t character = next.valid ? Text::lowered(next.character) : U' ';
    Text::appendCharacter(result, static_cast<std::uint32_t>(character));
    word.remove_prefix(next.length);
  }
  return result;
}

std::string indexed(std::string_view text) {
  std::string words;
  words.reserve(text.size() + text.size() / 4);
  WordSplitter::split(text, [&words](const Word& word) {
    if (word.kind == Word::Kind::run) return;
    words.append(word.text).append(" ");
  });
  return words;
}

std::vector<SearchTerm> searchTerms(std::string_view prompt) {
  Gatherer gatherer;
  prompt = prompt.substr(0, Ranking::mostPromptBytes);
  WordSplitter::split(prompt, [&gatherer](const Word& word) { gatherer.take(word); });
  std::vector<SearchTerm> terms = gatherer.finish();
  std::erase_if(terms, [](const SearchTerm& term) { return term.says <= 0; });
  if (terms.size() > Ranking::mostWords)
    terms.erase(terms.begin() + Ranking::mostWords, terms.end());
  return terms;
}

}  // namespace quillstead::server::Words
