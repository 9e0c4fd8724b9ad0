#include "server/Rules/RulesIndex.h"

#include "server/Fence.h"
#include "support/Text/Text.h"

#include <vector>

namespace quillstead::RulesIndex {

namespace {

constexpr std::size_t longestTitle = 100;  // characters

std::string headingFor(std::size_t total) {
  return "Memory holds " + std::to_string(total) + (total == 1 ? " card" : " cards") +
         " (`grab` reads one by its title):";
}

std::string lineFor(const std::string& title) {
  const std::string safe = Fence::harmless(title);
  const std::string_view shortened = Text::firstCharacters(safe, longestTitle);
  std::string line = "\n- " + std::string(shortened);
  if (shortened.size() < safe.size()) line += "…";
  return line;
}

std::string remainder(std::size_t count) {
  if (count == 0) return {};
  return "\n- … and " + std::to_string(count) + " more (`memory_get_relevant` finds them)";
}

}  // namespace

std::string rendered(const Titles& titles, std::size_t limit) {
  const std::string heading = headingFor(titles.total);
  std::vector<std::string> lines;
  std::size_t size = heading.size();
  for (const std::string& title : titles.newest) {
    lines.push_back(lineFor(title));
    size += lines.back().size();
    if (size > limit) break;
  }
  while (!lines.empty() && size + remainder(titles.total - lines.size()).size() > limit) {
    size -= lines.back().size();
    lines.pop_back();
  }
  if (lines.empty()) return {};

  std::string text = heading;
  for (const std::string& line : lines) text += line;
  return text + remainder(titles.total - lines.size());
}

}  // namespace quillstead::RulesIndex
