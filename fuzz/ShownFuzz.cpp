// Any bytes as what an agent is shown: nothing of it ends the fence that it stands in.
#include "Property.h"
#include "server/Shown.h"

#include <algorithm>
#include <array>
#include <cctype>

using namespace quillstead;
using namespace quillstead::server;

namespace {

bool opensATag(std::string_view text) {
  const auto opens = [](char mark, char next) {
    const bool isLetter = std::isalpha(static_cast<unsigned char>(next)) != 0;
    return mark == '<' && (isLetter || next == '/' || next == '|' || next == '!' || next == '?');
  };
  return std::adjacent_find(text.begin(), text.end(), opens) != text.end();
}

bool holdsAFence(std::string_view text) {
  constexpr std::array<std::string_view, 4> fences{"<quillstead-", "</quillstead-", "<user-rules",
                                                   "</user-rules"};
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char each) { return static_cast<char>(std::tolower(each)); });
  return std::any_of(fences.begin(), fences.end(), [&](std::string_view fence) {
    return lower.find(fence) != std::string::npos;
  });
}

bool holdsControls(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](unsigned char each) {
    return (each < ' ' && each != '\t' && each != '\n') || each == 0x7F;
  });
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view given = Fuzz::bytes(data, size);
  const std::string text = Shown::text(given);
  Fuzz::require(Fuzz::isUTF8(text), "what is shown is UTF-8");
  Fuzz::require(!opensATag(text), "what is shown opens no tag");
  Fuzz::require(!holdsControls(text), "what is shown can be seen");
  Fuzz::require(Shown::text(text) == text, "what was made fit stays as it is");

  const std::string line = Shown::line(given);
  Fuzz::require(line.empty() || Fuzz::isOneLine(line), "a title is one line");
  Fuzz::require(line.size() <= Shown::longestLine, "a title is short");
  Fuzz::require(Fuzz::isUTF8(line) && !opensATag(line) && !holdsControls(line),
                "a title is as fit as a text");

  const std::string own = Shown::escapeFences(Text::repaired(std::string(given)));
  Fuzz::require(Fuzz::isUTF8(own) && !holdsAFence(own), "the user's own text ends no fence");
  return 0;
}
