#include "server/Fence.h"

#include <algorithm>
#include <array>

namespace quillstead::Fence {

namespace {

constexpr std::array<std::string_view, 2> tagBeginnings{"user-rules", "quillstead-"};

char lowered(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool beginsWith(std::string_view text, std::string_view lowerCase) {
  return text.size() >= lowerCase.size() &&
         std::equal(lowerCase.begin(), lowerCase.end(), text.begin(),
                    [](char expected, char letter) { return expected == lowered(letter); });
}

/// `text` begins just after a "<".
bool isFenceTag(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n/");
  if (begin == std::string_view::npos) return false;
  text.remove_prefix(begin);
  return std::any_of(tagBeginnings.begin(), tagBeginnings.end(),
                     [text](std::string_view name) { return beginsWith(text, name); });
}

}  // namespace

std::string harmless(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<')) {
    const bool isTag = isFenceTag(text.substr(at + 1));
    result.append(text.substr(0, at)).append(isTag ? "&lt;" : "<");
    text.remove_prefix(at + 1);
  }
  return result.append(text);
}

}  // namespace quillstead::Fence
