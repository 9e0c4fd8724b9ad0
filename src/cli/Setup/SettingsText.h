#pragma once

#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <variant>

/// The content of a settings file, which may not be there.
namespace quillstead::cli::SettingsText {

/// What is not there is a document without a root.
std::variant<JSONC::Document, JSONC::Complaint> read(const std::optional<std::string>& before);

/// The content for a document that was made of `before`. In a file that was there, and empty, a
/// line end goes first: what is written into no file has none, and goes with the file.
std::string of(const JSONC::Document& document, const std::optional<std::string>& before);

}  // namespace quillstead::cli::SettingsText
