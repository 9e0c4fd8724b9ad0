#include "cli/Setup/SettingsText.h"

namespace quillstead::cli::SettingsText {

std::variant<JSONC::Document, JSONC::Complaint> read(const std::optional<std::string>& before) {
  return JSONC::Document::read(before.value_or(""));
}

std::string of(const JSONC::Document& document, const std::optional<std::string>& before) {
  const bool wasThereAndEmpty = before && before->empty() && document.root();
  return (wasThereAndEmpty ? "\n" : "") + document.text();
}

}  // namespace quillstead::cli::SettingsText
