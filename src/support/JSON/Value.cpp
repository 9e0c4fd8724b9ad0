#include "support/JSON/Value.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <numeric>

namespace quillstead::JSON {

std::optional<std::int64_t> Number::integer() const {
  std::int64_t value = 0;
  const char* const end = text_.data() + text_.size();
  const auto [parsed, error] = std::from_chars(text_.data(), end, value);
  if (error != std::errc() || parsed != end) return std::nullopt;
  return value;
}

double Number::approximation() const { return std::strtod(text_.c_str(), nullptr); }

namespace {

constexpr std::size_t comparedPairwise = 16;  ///< below this many members, sorting costs more

bool keysDiffer(std::span<const Member> members) {
  for (std::size_t i = 1; i < members.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (members[i].key == members[j].key) return false;
    }
  }
  return true;
}

/// Moves the last value of every repeated key into the place of its first, and drops the others.
/// Sorting keeps this at n log n whatever keys a hostile document chooses.
void dropRepeatedKeys(std::vector<Member>& members) {
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
    if (last != first) members[order[first]].value = std::move(members[order[last]].value);
    first = last + 1;
  }

  std::size_t kept = 0;
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (dropped[i]) continue;
    if (kept != i) members[kept] = std::move(members[i]);
    ++kept;
  }
  members.resize(kept);
}

}  // namespace

Object::Object(std::vector<Member> members) : members_(std::move(members)) {
  if (members_.size() <= comparedPairwise && keysDiffer(members_)) return;
  dropRepeatedKeys(members_);
}

const Value* Object::find(std::string_view key) const {
  for (const Member& member : members_) {
    if (member.key == key) return &member.value;
  }
  return nullptr;
}

Value* Object::find(std::string_view key) {
  return const_cast<Value*>(std::as_const(*this).find(key));
}

std::span<const Member> Object::members() const { return members_; }

std::size_t Object::size() const { return members_.size(); }

void Object::set(std::string_view key, Value value) {
  if (Value* present = find(key)) {
    *present = std::move(value);
  } else {
    members_.push_back({.key = std::string(key), .value = std::move(value)});
  }
}

}  // namespace quillstead::JSON
