#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::hook {

/// What a run has to report, as "key=value" fields in the order they came.
class Trail {
 public:
  void append(std::string field) { fields_.push_back(std::move(field)); }
  void append(std::vector<std::string> fields);

  /// Puts `field` in the place of every field that is exactly `old`.
  void replace(std::string_view old, std::string_view field);

  [[nodiscard]] bool empty() const { return fields_.empty(); }

  /// The fields with one blank between each.
  [[nodiscard]] std::string joined() const;

  /// A lane's fields in one word, by the first of them whose key is `key`: "timeout" when that says
  /// the lane had no time, "refused" when it gives another reason for failing, else "ok".
  static std::string_view laneStatus(std::span<const std::string> fields, std::string_view key);

 private:
  std::vector<std::string> fields_;
};

}  // namespace quillstead::hook
