#pragma once

#include <optional>
#include <string>

namespace quillstead::cli {

/// The difference between two contents of a file, in the format of `diff -u`. Absent content: no
/// file. Empty when nothing changes.
std::string unifiedDiff(const std::string& path, const std::optional<std::string>& before,
                        const std::optional<std::string>& after);

}  // namespace quillstead::cli
