#include "server/Index/Words.h"

#include "server/Index/StopWords.h"
#include "support/Text/Character.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <unordered_set>

namespace quillstead::Words {

namespace {

bool isASCII(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Gathers words, each once.
class Gatherer {
 public:
  void take(char32_t character) {
    if (Text::isIdeograph(character)) {
      endWord();
      takeIdeograph(character);
    } else if (Text::isWordCharacter(character)) {
      endIdeographs();
      Text::appendCharacter(word_, static_cast<std::uint32_t>(Text::lowered(character)));
    } else {
      endWord();
      endIdeographs();
    }
  }

  std::vector<std::string> finish() {
    endWord();
    endIdeographs();
    return std::move(words_);
  }

 private:
  void add(std::string word) {
    if (seen_.insert(word).second) words_.push_back(std::move(word));
  }

  void endWord() {
    const bool single = word_.size() == 1;
    if (!word_.empty() && !single && !StopWords::contains(word_)) add(word_);
    word_.clear();
  }

  void takeIdeograph(char32_t character) {
    std::string next;
    Text::appendCharacter(next, static_cast<std::uint32_t>(character));
    if (!ideograph_.empty()) {
      add(ideograph_ + ' ' + next);
      paired_ = true;
    }
    ideograph_ = std::move(next);
  }

  void endIdeographs() {
    if (!ideograph_.empty() && !paired_) add(ideograph_);
    ideograph_.clear();
    paired_ = false;
  }

  std::string word_;
  std::string ideograph_;  ///< the last character of a run without blanks
  bool paired_ = false;    ///< that character is part of a word already
  std::vector<std::string> words_;
  std::unordered_set<std::string> seen_;
};

}  // namespace

std::string spaced(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto plain = static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), isASCII) - text.begin());
    result.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const Text::Decoded next = Text::decodeFirst(text);
    const bool alone = Text::isIdeograph(next.character);
    if (alone) result += ' ';
    result.append(text.substr(0, next.length));
    if (alone) result += ' ';
    text.remove_prefix(next.length);
  }
  return result;
}

std::vector<std::string> telling(std::string_view text) {
  Gatherer gatherer;
  while (!text.empty()) {
    const Text::Decoded next = Text::decodeFirst(text);
    gatherer.take(next.valid ? next.character : U' ');
    text.remove_prefix(next.length);
  }
  return gatherer.finish();
}

}  // namespace quillstead::Words
