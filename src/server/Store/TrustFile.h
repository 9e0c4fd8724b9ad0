#pragma once

#include "support/OS/Environment.h"

#include <string>
#include <variant>
#include <vector>

/// The file in which the user's trust is kept: `trusted` in the personal directory, one path a
/// line.
namespace quillstead::server::TrustFile {

using Lines = std::vector<std::string>;

/// Why the file is not the user's word or cannot be used, for the user's eyes, without a full stop.
struct Unusable {
  std::string reason;
};

/// Its lines, whatever they hold; none when there is no file.
std::variant<Lines, Unusable> read(const OS::Environment& environment);

enum class Change { made, none };
using Outcome = std::variant<Change, Unusable>;

/// Adds a line at the end, or removes it wherever it is; other lines stay as they are. Makes the
/// file, and its directory, for the user only. Waits for others that do the same.
Outcome add(const OS::Environment& environment, const std::string& line);
Outcome remove(const OS::Environment& environment, const std::string& line);

}  // namespace quillstead::server::TrustFile
