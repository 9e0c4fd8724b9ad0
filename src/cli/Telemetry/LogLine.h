#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// A parsed line of the hook's log. Its views point into the line.
struct LogLine {
  using Time = std::chrono::sys_time<std::chrono::milliseconds>;

  struct Stage {
    std::string_view name;
    std::int64_t milliseconds;
  };

  Time when;
  std::int64_t milliseconds;             ///< of the whole run
  std::string_view slot;                 ///< "rules", "index" or "recall"; empty: a run without one
  std::vector<std::string_view> fields;  ///< "key=value", without the slot, in their order
  std::vector<Stage> stages;             ///< without the residual

  /// Parses a line without its line end. False when the line is cut or not the hook's; the members
  /// are then undefined. (The stages and the residual must add up to the whole, so that a line that
  /// lost its last digit is found.) The members' memory is reused for the next line.
  bool read(std::string_view line);

  /// The value of the first field with that key; absent when there is none.
  [[nodiscard]] std::optional<std::string_view> value(std::string_view key) const;

  /// The number in the field with that key, at least 1; 0 when there is none.
  [[nodiscard]] std::int64_t count(std::string_view key) const;

  /// True when the field says that a part was not received or not sent: "rules=MISS:timeout".
  static bool isMiss(std::string_view field);
};

}  // namespace quillstead::cli
