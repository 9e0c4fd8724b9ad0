#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace quillstead::JSON {

class View;
class ObjectView;
struct MemberView;

/// A number, kept as its text in the document, so that it can be written back unchanged, whatever
/// its size or precision.
class Number {
 public:
  /// `text` must be a valid JSON number, and outlive this object.
  explicit Number(std::string_view text) : text_(text) {}

  [[nodiscard]] std::string_view text() const { return text_; }

  /// The value of a number that is written without fraction and exponent. Absent for any other
  /// number (3.0 and 3e0 too) and for an integer that does not fit 64 bits.
  [[nodiscard]] std::optional<std::int64_t> integer() const;

  /// The nearest double; infinite when the number is beyond a double's range.
  [[nodiscard]] double toDouble() const;

 private:
  std::string_view text_;
};

using ArrayView = std::span<const View>;

/// A value in a document, or the absence of one. It is cheap to copy, and valid as long as the
/// document exists. Strings are valid UTF-8.
class View {
 public:
  View() = default;  ///< absent
  explicit View(std::nullptr_t) : View(Kind::null, nullptr, 0) {}
  explicit View(bool boolean) : View(Kind::boolean, nullptr, boolean ? 1 : 0) {}
  explicit View(Number number) : View(Kind::number, number.text().data(), number.text().size()) {}
  explicit View(const char*) = delete;  // would be taken for a boolean
  explicit View(std::string_view string) : View(Kind::string, string.data(), string.size()) {}
  explicit View(ArrayView array);
  explicit View(ObjectView object);

  [[nodiscard]] bool exists() const { return kind() != Kind::absent; }
  [[nodiscard]] bool isNull() const { return kind() == Kind::null; }

  /// Each returns the content when the value is of that kind; else absent or empty.
  [[nodiscard]] std::optional<bool> boolean() const;
  [[nodiscard]] std::optional<Number> number() const;
  [[nodiscard]] std::optional<std::string_view> string() const;
  [[nodiscard]] std::optional<ArrayView> array() const;
  [[nodiscard]] std::optional<ObjectView> object() const;

  /// The elements of an array; none for any other value.
  [[nodiscard]] ArrayView elements() const { return array().value_or(ArrayView()); }

 private:
  enum class Kind : std::uint8_t { absent, null, boolean, number, string, array, object };

  View(Kind kind, const void* start, std::size_t size)
      : start_(start), sizeAndKind_(size << kindBits | static_cast<std::uint64_t>(kind)) {}

  [[nodiscard]] Kind kind() const { return static_cast<Kind>(sizeAndKind_ & kindMask); }
  [[nodiscard]] std::size_t size() const { return sizeAndKind_ >> kindBits; }
  [[nodiscard]] std::string_view characters() const {
    return {static_cast<const char*>(start_), size()};
  }

  static constexpr unsigned kindBits = 8;
  static constexpr std::uint64_t kindMask = (1U << kindBits) - 1;

  const void* start_ = nullptr;    ///< of the characters, elements or members
  std::uint64_t sizeAndKind_ = 0;  ///< their number (of a boolean its value), and the kind below it
};

struct MemberView {
  std::string_view key;
  View value;
};

/// The members of an object in document order, no key twice.
class ObjectView {
 public:
  ObjectView() = default;  ///< empty

  /// The keys of `members` must differ.
  explicit ObjectView(std::span<const MemberView> members) : members_(members) {}

  [[nodiscard]] View find(std::string_view key) const;  ///< absent when there is none
  [[nodiscard]] std::span<const MemberView> members() const { return members_; }
  [[nodiscard]] std::size_t size() const { return members_.size(); }
  [[nodiscard]] bool empty() const { return members_.empty(); }

 private:
  std::span<const MemberView> members_;
};

/// Removes repeated keys from the members of an object: the last value counts, in the place of the
/// first. Returns how many members are left, at the start of `members`.
std::size_t dropRepeatedKeys(std::span<MemberView> members);

inline std::optional<bool> View::boolean() const {
  if (kind() != Kind::boolean) return std::nullopt;
  return size() != 0;
}

inline std::optional<Number> View::number() const {
  if (kind() != Kind::number) return std::nullopt;
  return Number(characters());
}

inline std::optional<std::string_view> View::string() const {
  if (kind() != Kind::string) return std::nullopt;
  return characters();
}

inline std::optional<ArrayView> View::array() const {
  if (kind() != Kind::array) return std::nullopt;
  return ArrayView(static_cast<const View*>(start_), size());
}

inline std::optional<ObjectView> View::object() const {
  if (kind() != Kind::object) return std::nullopt;
  return ObjectView({static_cast<const MemberView*>(start_), size()});
}

inline View::View(ArrayView array) : View(Kind::array, array.data(), array.size()) {}
inline View::View(ObjectView object) : View(Kind::object, object.members().data(), object.size()) {}

}  // namespace quillstead::JSON
