#pragma once

#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <span>
#include <string>

/// Adds and removes members at a path, with the objects above them.
namespace quillstead::cli::Members {

/// Adds a member and the missing objects above it. What exists of the path must be objects, and the
/// member must not exist.
JSONC::Document add(const JSONC::Document& document, std::span<const std::string> keys,
                    JSON::Value value);

/// Removes a member or element, and the containers above it that were created for it and are now
/// empty. Absent when nothing is left of the document.
std::optional<JSONC::Document> remove(const JSONC::Document& document, JSONC::Path path);

/// The complaint when a part of the path is not an object; a missing member is no problem.
std::optional<JSONC::Complaint> notObjects(const JSONC::Document& document,
                                           std::span<const std::string> keys);

JSONC::Path pathOf(std::span<const std::string> keys);

}  // namespace quillstead::cli::Members
