#pragma once

#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <span>
#include <string>

/// Members that are as deep in a document as the path to them is long, with the objects above them.
namespace quillstead::cli::Members {

/// Adds a member, and the objects above it that are missing. What is there of the path must be
/// objects, and the member must not be there.
JSONC::Document add(const JSONC::Document& document, std::span<const std::string> keys,
                    JSON::Value value);

/// Takes away a member or an element, and the containers above it that were made for it and are
/// empty without it. Absent when that is the document.
std::optional<JSONC::Document> remove(const JSONC::Document& document, JSONC::Path path);

/// What is wrong when something at the path is no object; a member that is missing is none.
std::optional<JSONC::Complaint> notObjects(const JSONC::Document& document,
                                           std::span<const std::string> keys);

JSONC::Path pathOf(std::span<const std::string> keys);

}  // namespace quillstead::cli::Members
