#include "support/JSON/View.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <numeric>
#include <string>
#include <vector>

namespace quillstead::JSON {

namespace {

constexpr std::size_t comparedPairwise = 16;  ///< above this many members, sorting costs less

bool keysDiffer(std::span<const MemberView> members) {
  for (std::size_t i = 1; i < members.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (members[i].key == members[j].key) return false;
    }
  }
  return true;
}

}  // namespace

std::optional<std::int64_t> Number::integer() const {
  std::int64_t value = 0;
  const char* const end = text_.data() + text_.size();
  const auto [parsed, error] = std::from_chars(text_.data(), end, value);
  if (error != std::errc() || parsed != end) return std::nullopt;
  return value;
}

double Number::toDouble() const { return std::strtod(std::string(text_).c_str(), nullptr); }

View ObjectView::find(std::string_view key) const {
  for (const MemberView& member : members_) {
    if (member.key == key) return member.value;
  }
  return {};
}

std::size_t dropRepeatedKeys(std::span<MemberView> members) {
  if (members.size() <= comparedPairwise && keysDiffer(members)) return members.size();

  // Sorting keeps this at n log n whatever keys a hostile document chooses.
  std::vector<std::size_t> order(members.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
    const int compared = members[left].key.compare(members[right].key);
    return compared != 0 ? compared < 0 : left < right;
  });

  std::vector<bool> dropped(members.size(), false);
  for (std::size_t first = 0; first < order.size();) {
    std::size_t last = first;
    while (last + 1 < order.size() && members[order[last + 1]].key == members[order[first]].key) {
      dropped[order[++last]] = true;
    }
    members[order[first]].value = members[order[last]].value;
    first = last + 1;
  }

  std::size_t kept = 0;
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (!dropped[i]) members[kept++] = members[i];
  }
  return kept;
}

}  // namespace quillstead::JSON
