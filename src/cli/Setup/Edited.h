#pragma once

#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <variant>

namespace quillstead::cli {

/// What a file is to hold.
struct Edited {
  std::optional<std::string> text;  ///< absent: there is to be no file
  bool hadOurs;                     ///< there was something of ours in it before
};

/// The new content of a file, or why it is left alone.
using EditOutcome = std::variant<Edited, JSONC::Complaint>;

}  // namespace quillstead::cli
