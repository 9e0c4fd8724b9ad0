// Any text as the user's rules: it may be cut where Rules::borders says, and nowhere else.
#include "Property.h"
#include "server/Rules/Rules.h"

using namespace quillstead;
using namespace quillstead::server;

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string repaired = Text::repaired(std::string(Fuzz::bytes(data, size)));
  const std::string_view text = Text::trimmed(repaired);
  const std::vector<std::size_t> borders = Rules::borders(text);
  Fuzz::require(borders.empty() == text.empty(), "only an empty text has no border");
  if (borders.empty()) return 0;
  Fuzz::require(borders.back() == text.size(), "the last border is the end");
  std::size_t before = 0;
  for (const std::size_t border : borders) {
    Fuzz::require(border > before && border <= text.size(), "borders grow");
    Fuzz::require(!Text::isBlank(text.substr(before, border - before)), "a rule says something");
    Fuzz::require(Fuzz::isUTF8(text.substr(0, border)), "a border lies between characters");
    Fuzz::require(border == text.size() || text[border] == '\n' || text[border] == '\r',
                  "a rule ends with its line");
    before = border;
  }
  return 0;
}
