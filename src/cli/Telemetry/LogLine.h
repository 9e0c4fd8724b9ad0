#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// A line of the hook's log, taken apart. The views lie in the line.
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
  std::vector<Stage> stages;             ///< without the rest that no stage accounts for

  /// Takes a line without its end apart. False, and nothing of use in the members, when the hook
  /// did not write it like that: another program's, or cut. (The stages and the rest have to make
  /// up the whole, so that a line which lost its last digit shows.) The members keep their memory,
  /// for use with one line after the other.
  bool read(std::string_view line);

  /// The value of the first field of that key; absent when there is none.
  [[nodiscard]] std::optional<std::string_view> value(std::string_view key) const;

  /// The number that a field says, at least 1; 0 for any other field and none.
  [[nodiscard]] std::int64_t count(std::string_view key) const;

  /// True when the field says that something did not come, or not through: "rules=MISS:timeout".
  static bool isMiss(std::string_view field);
};

}  // namespace quillstead::cli
