#include "cli/Wording.h"

#include <algorithm>

namespace quillstead::cli::Wording {

namespace {

bool isControl(char character) {
  constexpr char erase = 0x7F;
  return (character >= 0 && character < ' ') || character == erase;
}

}  // namespace

std::string grouped(std::int64_t number) {
  constexpr std::size_t group = 3;
  std::string text = std::to_string(number);
  const std::size_t start = text.starts_with('-') ? 1 : 0;
  for (std::size_t at = text.size(); at > start + group;) {
    at -= group;
    text.insert(at, ",");
  }
  return text;
}

std::string counted(std::int64_t number, const std::string& what) {
  return grouped(number) + " " + what + (number == 1 ? "" : "s");
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string all;
  for (const std::string& text : texts) {
    if (&text != &texts.front()) all += separator;
    all += text;
  }
  return all;
}

std::string harmless(std::string_view text) {
  std::string safe(text);
  std::replace_if(
      safe.begin(), safe.end(),
      [](char each) { return isControl(each) && each != '\n' && each != '\t'; }, '?');
  return safe;
}

std::string plain(std::string_view text) {
  std::string safe(text);
  std::replace_if(
      safe.begin(), safe.end(), [](char each) { return each < ' ' || each > '~'; }, '?');
  return safe;
}

}  // namespace quillstead::cli::Wording
