#pragma once

#include "server/Store/Scope.h"
#include "support/JSON/View.h"
#include "support/OS/Environment.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// The arguments of one call, read one by one. A value that is missing or null is absent; the first
/// value of a wrong kind is remembered and makes the call a bad one.
class Arguments {
 public:
  explicit Arguments(JSON::ObjectView arguments) : arguments_(arguments) {}

  /// A text without zero characters.
  std::optional<std::string> text(std::string_view name);

  /// A text that may hold anything.
  std::optional<std::string> anyText(std::string_view name);

  /// A text that must be there and not blank.
  std::string neededText(std::string_view name);

  /// The text when it is not blank, without its blanks at both ends.
  std::optional<std::string> trimmedText(std::string_view name);

  /// An array of texts, or one text in which commas set them apart; blank ones are left out.
  std::vector<std::string> texts(std::string_view name);

  bool flag(std::string_view name);

  /// An integer of at least 1.
  std::optional<std::size_t> count(std::string_view name);

  std::optional<Store::Kind> store(std::string_view name);

  /// The stores for the call's "cwd".
  Scope scope(const OS::Environment& environment);

  /// What was wrong first; absent when nothing was.
  [[nodiscard]] const std::optional<std::string>& flaw() const { return flaw_; }

 private:
  [[nodiscard]] JSON::View find(std::string_view name) const;
  void complain(std::string_view name, std::string_view expected);

  JSON::ObjectView arguments_;
  std::optional<std::string> flaw_;
};

}  // namespace quillstead
