#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// One line of the log, taken apart.
struct TelemetryRecord {
  struct Stage {
    std::string name;
    std::int64_t milliseconds;
  };

  std::string timestamp;
  std::int64_t totalMilliseconds;
  std::string trail;  ///< fields with single blanks between them
  std::vector<Stage> stages;
  std::int64_t residual;

  /// Names of the stages, with single blanks between them.
  [[nodiscard]] std::string stageNames() const;

  /// What one stage took; absent when the run had none of that name.
  [[nodiscard]] std::optional<std::int64_t> stage(std::string_view name) const;

  /// True when the stages and the residual make up the total.
  [[nodiscard]] bool addsUp() const;
};

/// The record in a line without its line feed; absent when the line has not exactly the form
/// `<timestamp> <total>ms <trail> | <stage> <ms> … residual <ms>`.
std::optional<TelemetryRecord> telemetryRecord(const std::string& line);

}  // namespace quillstead
