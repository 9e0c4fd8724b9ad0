#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace quillstead::server {

/// A list of words, written as one string with spaces between them, and sorted at compile time.
template <const std::string_view& text>
class WordList {
 public:
  static bool contains(std::string_view word) {
    return !word.empty() && marks[markOf(word)] &&
           std::binary_search(words.begin(), words.end(), word);
  }

 private:
  static constexpr std::size_t count() {
    std::size_t found = 0;
    bool inWord = false;
    for (const char letter : text) {
      if (letter != ' ' && !inWord) ++found;
      inWord = letter != ' ';
    }
    return found;
  }

  static constexpr auto sorted() {
    std::array<std::string_view, count()> all;
    std::size_t found = 0;
    for (std::size_t begin = 0; begin < text.size();) {
      const std::size_t end = std::min(text.find(' ', begin), text.size());
      if (end > begin) all[found++] = text.substr(begin, end - begin);
      begin = end + 1;
    }
    std::sort(all.begin(), all.end());
    return all;
  }

  /// A small hash. Most words that are not in the list have one that no word of the list has.
  static constexpr std::size_t markOf(std::string_view word) {
    const auto inner = static_cast<unsigned char>(word[word.size() / 3]);
    const auto last = static_cast<unsigned char>(word.back());
    return (inner + last * 32U + word.size() * 128U) % mostMarks;
  }

  static constexpr auto marked() {
    std::array<bool, mostMarks> found{};
    for (const std::string_view word : sorted()) found[markOf(word)] = true;
    return found;
  }

  static constexpr std::size_t mostMarks = 2'048;
  static constexpr auto words = sorted();
  static constexpr auto marks = marked();
};

}  // namespace quillstead::server
