#include "server/Store/CardName.h"

#include "server/Store/StoreFiles.h"
#include "support/OS/Random.h"
#include "support/Text/Character.h"
#include "support/Text/Text.h"

#include <cstdint>

namespace quillstead::server::CardName {

namespace {

constexpr std::size_t longestStem = 60;   // bytes
constexpr std::size_t longestName = 255;  // bytes, what file systems take
constexpr std::string_view nameless = "card";

std::string stemOf(std::string_view title) {
  std::string stem;
  bool gap = false;
  while (!title.empty()) {
    const Text::Decoded next = Text::decodeFirst(title);
    title.remove_prefix(next.length);
    if (!next.valid || !Text::isWordCharacter(next.character)) {
      gap = !stem.empty();
      continue;
    }
    std::string piece = gap ? "-" : "";
    Text::appendCharacter(piece, static_cast<std::uint32_t>(Text::lowered(next.character)));
    if (stem.size() + piece.size() > longestStem) break;
    stem += piece;
    gap = false;
  }
  return stem.empty() ? std::string(nameless) : stem;
}

bool hasParentStep(std::string_view name) {
  while (!name.empty()) {
    const std::size_t slash = name.find('/');
    if (name.substr(0, slash) == "..") return true;
    name.remove_prefix(slash == std::string_view::npos ? name.size() : slash + 1);
  }
  return false;
}

}  // namespace

std::string fromTitle(std::string_view title, std::string_view mark) {
  return stemOf(title).append("-").append(mark).append(StoreFiles::cardSuffix);
}

std::string randomMark() {
  constexpr std::string_view signs = "0123456789abcdefghjkmnpqrstvwxyz";  // none looks like another
  constexpr std::size_t length = 6;
  std::uint64_t number = OS::randomNumber();
  std::string mark;
  for (std::size_t count = 0; count < length; ++count) {
    mark += signs[number % signs.size()];
    number /= signs.size();
  }
  return mark;
}

Flaw flawOf(std::string_view name) {
  if (name.starts_with('/') || name.starts_with('~')) return Flaw::absolute;
  if (hasParentStep(name)) return Flaw::leavesStore;
  if (name.find('/') != std::string_view::npos) return Flaw::inSubdirectory;
  const bool usable = !name.empty() && name != "." && name.size() <= longestName &&
                      name.find('\0') == std::string_view::npos;
  return usable ? Flaw::none : Flaw::unusable;
}

}  // namespace quillstead::server::CardName
