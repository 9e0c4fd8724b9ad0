#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::hook {

/// The "key=value" fields of a run's log line, in the order they were added.
class Trail {
 public:
  void append(std::string field) { fields_.push_back(std::move(field)); }
  void append(std::vector<std::string> fields);

  /// Replaces every field that is exactly `old` by `field`.
  void replace(std::string_view old, std::string_view field);

  [[nodiscard]] bool empty() const { return fields_.empty(); }

  /// The fields, joined by single spaces.
  [[nodiscard]] std::string joined() const;

  /// One word for a lane, from its first field with the key `key`: "timeout" when the lane ran out
  /// of time, "refused" when it failed for another reason, else "ok".
  static std::string_view laneStatus(std::span<const std::string> fields, std::string_view key);

 private:
  std::vector<std::string> fields_;
};

}  // namespace quillstead::hook
