#pragma once

#include <optional>
#include <string_view>

namespace quillstead::OS {

/// A read-only view of the process's environment. It is passed down, so that no other code reads
/// the environment. The strings belong to the process and outlive every use.
class Environment {
 public:
  /// The environment of this process.
  static Environment ofProcess();

  /// `entries`: "NAME=value" strings, the list ended by a null pointer.
  explicit Environment(const char* const* entries) : entries_(entries) {}

  /// The value of the first entry with that name; absent when there is none. May be empty.
  [[nodiscard]] std::optional<std::string_view> value(std::string_view name) const;

  [[nodiscard]] const char* const* entries() const { return entries_; }

 private:
  const char* const* entries_;
};

}  // namespace quillstead::OS
