#pragma once

#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <variant>

namespace quillstead::cli {

/// The new content of a file.
struct Edited {
  std::optional<std::string> text;  ///< absent: the file is removed
  bool hadOurs;                     ///< it had an entry of ours before
};

/// The new content of a file, or why it is left alone.
using EditOutcome = std::variant<Edited, JSONC::Complaint>;

}  // namespace quillstead::cli
