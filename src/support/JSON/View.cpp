#include "support/JSON/View.h"

#include <charconv>
#include <cstdlib>
#include <string>

namespace quillstead::JSON {

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

}  // namespace quillstead::JSON
