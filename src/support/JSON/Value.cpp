#include "support/JSON/Value.h"

#include <algorithm>

namespace quillstead::JSON {

namespace {

/// How many members most objects get that are filled one by one.
constexpr std::size_t usualMembers = 8;

}  // namespace

Value Value::number(std::string text) {
  Value value;
  value.data_ = NumberText{std::move(text)};
  return value;
}

Value Value::copyOf(View part) {
  if (const auto boolean = part.boolean()) return *boolean;
  if (const auto read = part.number()) return number(std::string(read->text()));
  if (const auto string = part.string()) return *string;
  if (const auto array = part.array()) {
    Array elements;
    for (const View element : *array) elements.push_back(copyOf(element));
    return elements;
  }
  if (const auto object = part.object()) {
    std::vector<Member> members;
    for (const MemberView& member : object->members()) {
      members.push_back({.key = std::string(member.key), .value = copyOf(member.value)});
    }
    return Object(std::move(members));
  }
  return nullptr;
}

std::optional<Number> Value::number() const {
  const auto* const number = std::get_if<NumberText>(&data_);
  return number ? std::optional(Number(number->text)) : std::nullopt;
}

Object::Object(std::vector<Member> members) : members_(std::move(members)) {}

Object::Object(ObjectView members) {
  members_.reserve(members.size() + 1);  // a member is usually added next
  for (const MemberView& member : members.members()) {
    members_.push_back({.key = std::string(member.key), .value = member.value});
  }
}

const Value* Object::find(std::string_view key) const {
  for (const Member& member : members_) {
    if (member.key == key) return &member.value;
  }
  return nullptr;
}

std::span<const Member> Object::members() const { return members_; }

std::size_t Object::size() const { return members_.size(); }

void Object::set(std::string_view key, Value value) {
  const auto present = std::find_if(members_.begin(), members_.end(),
                                    [&](const Member& member) { return member.key == key; });
  if (present != members_.end()) {
    present->value = std::move(value);
  } else {
    if (members_.empty()) members_.reserve(usualMembers);
    members_.push_back({.key = std::string(key), .value = std::move(value)});
  }
}

}  // namespace quillstead::JSON
