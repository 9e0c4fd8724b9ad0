#pragma once

#include "support/OS/Environment.h"

#include <string>
#include <variant>
#include <vector>

/// The file `trusted` in the personal directory: the trusted directories, one path a line.
namespace quillstead::server::TrustFile {

using Lines = std::vector<std::string>;

/// Why the file does not count or cannot be used, for the user, without a full stop.
struct Unusable {
  std::string reason;
};

/// Its lines, unchecked; none when there is no file.
std::variant<Lines, Unusable> read(const OS::Environment& environment);

enum class Change { made, none };
using Outcome = std::variant<Change, Unusable>;

/// Adds a line at the end, or removes it anywhere; other lines do not change. Creates the file and
/// its directory for the user only. Waits for other processes that do the same.
Outcome add(const OS::Environment& environment, const std::string& line);
Outcome remove(const OS::Environment& environment, const std::string& line);

}  // namespace quillstead::server::TrustFile
