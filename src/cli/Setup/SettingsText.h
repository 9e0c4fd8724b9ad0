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

/// The content of a settings file that may not exist.
namespace quillstead::cli::SettingsText {

/// A missing file is a document without a root.
inline std::variant<JSONC::Document, JSONC::Complaint> read(
    const std::optional<std::string>& before) {
  return JSONC::Document::read(before.value_or(""));
}

/// The new content, for a document made from `before`. In an existing empty file, a line end comes
/// first. That distinguishes it from a file that install created and uninstall removes.
inline std::string of(const JSONC::Document& document, const std::optional<std::string>& before) {
  const bool wasThereAndEmpty = before && before->empty() && document.root();
  return (wasThereAndEmpty ? "\n" : "") + document.text();
}

}  // namespace quillstead::cli::SettingsText
