#include "server/Recall/Passage.h"

#include "server/Index/WordSplitter.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>

namespace quillstead::server::Passage {

namespace {

using Words::SearchTerm;

/// A match: where a word of the prompt is in the text.
struct Match {
  std::size_t at;
  std::size_t end;
  std::size_t term;
};

/// The fewest bytes that two forms of a word share.
constexpr std::size_t shortestForm = 4;

/// True when the word may be another form of the term: both begin with most of the term.
bool isFormOf(std::string_view word, const SearchTerm& term) {
  const std::size_t most = std::max(shortestForm, (term.word.size() * 3 + 3) / 4);
  return term.word.size() >= most && word.starts_with(std::string_view(term.word).substr(0, most));
}

/// Finds terms by their words.
class Terms {
 public:
  explicit Terms(const std::vector<SearchTerm>& terms) : terms_(terms) {
    beginnings_.reserve(terms.size());
    for (const SearchTerm& term : terms) {
      beginnings_.push_back(beginningOf(term.word));
      known_[hashOf(beginnings_.back())] = true;
    }
  }

  /// The term that the word is, or is a form of.
  [[nodiscard]] std::optional<std::size_t> find(const WordSplitter::Word& word) const {
    if (!mayBeOne(word.text)) return std::nullopt;
    const bool isPair = word.script != Text::PairedScript::none;
    const std::string lowered = isPair ? std::string(word.text) : Words::lowered(word.text);
    const std::uint32_t beginning = beginningOf(lowered);
    std::optional<std::size_t> form;
    for (std::size_t at = 0; at < terms_.size(); ++at) {
      if (beginnings_[at] != beginning) continue;
      if (terms_[at].word == lowered) return at;
      if (!isPair && !form && isFormOf(lowered, terms_[at])) form = at;
    }
    return form;
  }

 private:
  /// A quick test that rejects most words. A letter beyond ASCII may have other bytes in lower
  /// case.
  [[nodiscard]] bool mayBeOne(std::string_view word) const {
    constexpr std::uint32_t beyondASCII = 0x80808080;
    const std::uint32_t beginning = beginningOf(word);
    return known_[hashOf(beginning)] || (beginning & beyondASCII) != 0;
  }

  /// The bytes that every form shares with its term, packed into one number, ASCII letters in lower
  /// case. Other bytes may collide.
  static std::uint32_t beginningOf(std::string_view word) {
    constexpr std::uint32_t lowerCase = 0x20202020;
    std::uint32_t beginning = 0;
    if (word.size() >= sizeof beginning) {
      std::memcpy(&beginning, word.data(), sizeof beginning);
    } else {
      std::copy(word.begin(), word.end(), reinterpret_cast<char*>(&beginning));
    }
    return beginning | lowerCase;
  }

  static std::size_t hashOf(std::uint32_t beginning) {
    constexpr std::uint32_t goldenRatio = 0x9E3779B9;  // spreads what differs in any byte
    constexpr int wordBits = 32;
    return (beginning * goldenRatio) >> (wordBits - hashBits);
  }

  static constexpr int hashBits = 10;

  const std::vector<SearchTerm>& terms_;
  std::vector<std::uint32_t> beginnings_;  ///< of each term
  std::bitset<1U << hashBits> known_;      ///< their hashes
};

bool isSmallLetter(char byte) { return byte >= 'a' && byte <= 'z'; }
bool isBlank(char byte) { return byte == ' ' || byte == '\n'; }
bool isPunctuation(char byte) { return byte == '.' || byte == ',' || byte == ':' || byte == '?'; }

std::vector<Match> matches(std::string_view text, const std::vector<SearchTerm>& terms) {
  const Terms known(terms);
  std::vector<Match> all;
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  const auto take = [&](const WordSplitter::Word& word) {
    const char* const place = word.text.data();
    const bool isHere = !std::less<>()(place, begin) && std::less<>()(place, end);
    if (!isHere || word.kind == WordSplitter::Word::Kind::run) return;
    const auto at = static_cast<std::size_t>(place - begin);
    if (const auto term = known.find(word)) {
      all.push_back({.at = at, .end = at + word.text.size(), .term = *term});
    }
  };
  for (std::size_t at = 0; at < text.size();) {
    std::size_t next = at;
    while (next < text.size() && isSmallLetter(text[next])) ++next;
    const std::string_view word = text.substr(at, next - at);
    bool isSimple = !word.empty();
    for (; next < text.size() && !isBlank(text[next]); ++next) {
      isSimple = isSimple && isPunctuation(text[next]);
    }
    if (!isSimple) {
      WordSplitter::split(text.substr(at, next - at), take);
    } else {
      take({.text = word});  // as the splitter would, for most words of most texts
    }
    at = next + 1;
  }
  return all;
}

/// The start of the window of `width` bytes whose terms weigh most, each counted once.
std::size_t bestPlace(const std::vector<Match>& all, const std::vector<SearchTerm>& terms,
                      std::size_t width) {
  std::vector<std::size_t> counts(terms.size());
  std::size_t place = 0;
  double most = 0;
  double says = 0;
  std::size_t next = 0;  // the first match behind those bytes
  for (const Match& first : all) {
    for (; next < all.size() && all[next].end <= first.at + width; ++next) {
      if (counts[all[next].term]++ == 0) says += terms[all[next].term].says;
    }
    if (says > most) {
      most = says;
      place = first.at;
    }
    if (next < all.size() && &all[next] == &first) {
      ++next;  // a word that is longer than the width
    } else if (--counts[first.term] == 0) {
      says -= terms[first.term].says;
    }
  }
  return place;
}

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// The start of a passage that contains the text from `match` on.
std::size_t beginningFor(std::string_view text, std::size_t match, std::size_t room) {
  const std::size_t earliest = match > room ? match - room : 0;
  if (earliest == 0) return 0;
  for (const char* const border : {"\n", " "}) {
    const std::size_t found = text.find(border, earliest);
    if (found < match) return found + 1;
  }
  std::size_t begin = earliest;
  while (begin < match && isContinuation(text[begin])) ++begin;
  return begin;
}

}  // namespace

std::string_view beginning(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text;
  const std::size_t near = limit - limit / 5;
  for (const char border : {'\n', ' '}) {
    const std::size_t found = text.rfind(border, limit);
    if (found != std::string_view::npos && found >= near) return text.substr(0, found);
  }
  while (limit > 0 && isContinuation(text[limit])) --limit;
  return text.substr(0, limit);
}

std::string_view best(std::string_view text, const std::vector<SearchTerm>& terms,
                      std::size_t limit) {
  if (text.size() <= limit) return text;
  const std::size_t room = limit / 4;  // before the first match
  const std::size_t place = bestPlace(matches(text, terms), terms, limit - room);
  const std::size_t begin = beginningFor(text, place, room);
  return Text::trimmed(beginning(text.substr(begin), limit));
}

}  // namespace quillstead::server::Passage
