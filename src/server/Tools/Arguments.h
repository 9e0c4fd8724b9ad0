#pragma once

#include "server/Session/SessionMemory.h"
#include "server/Store/Scope.h"
#include "support/JSON/View.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// The arguments of one call, read one by one. A missing or null value is absent. The first value
/// of a wrong type is recorded, and the call is then refused.
class Arguments {
 public:
  explicit Arguments(JSON::ObjectView arguments) : arguments_(arguments) {}

  /// A string without NUL characters.
  std::optional<std::string> string(std::string_view name);

  /// Any string.
  std::optional<std::string> anyString(std::string_view name);

  /// A string that is required and must not be blank.
  std::string neededString(std::string_view name);

  /// The trimmed string; absent when it is blank.
  std::optional<std::string> trimmedString(std::string_view name);

  /// An array of strings, or one string separated by commas; blank items are left out.
  std::vector<std::string> strings(std::string_view name);

  bool flag(std::string_view name);

  /// An integer of at least 1.
  std::optional<std::size_t> count(std::string_view name);

  std::optional<Store::Kind> store(std::string_view name);

  /// The call's working directory; absent when none is given or it is blank.
  std::optional<std::string> cwd();

  /// The session that makes the call.
  SessionMemory::Caller caller();

  /// The first error; absent when there is none.
  [[nodiscard]] const std::optional<std::string>& flaw() const { return flaw_; }

 private:
  [[nodiscard]] JSON::View find(std::string_view name) const;
  void complain(std::string_view name, std::string_view expected);

  JSON::ObjectView arguments_;
  std::optional<std::string> flaw_;
};

}  // namespace quillstead::server
