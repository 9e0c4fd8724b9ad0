#pragma once

#include <optional>
#include <string>

namespace quillstead::cli {

/// What changes from one content of a file to another, as `diff -u` tells it and `patch` takes it.
/// Absent: there is no file. Empty when nothing changes.
std::string unifiedDiff(const std::string& path, const std::optional<std::string>& before,
                        const std::optional<std::string>& after);

}  // namespace quillstead::cli
