#pragma once

#include "cli/Places.h"
#include "cli/Setup/HookTable.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <variant>

/// Our entries under "hooks" in a harness's settings. Entries of others are not touched.
namespace quillstead::cli::HookEntries {

/// The first place where the settings have a shape that the harness would not accept.
std::optional<JSONC::Complaint> misshapen(const JSONC::Document& document, const HookTable& table);

/// Whether one of our entries exists. Here and below, the settings must have the right shape.
bool areThere(const JSONC::Document& document, const HookTable& table);

/// Whether a handler runs our hook directly, from any path.
bool isOurs(const JSONC::Document& document, const JSONC::Node& handler);

/// Adds missing entries, updates existing ones, and merges duplicates.
JSONC::Document install(JSONC::Document document, const HookTable& table, const Programs& programs);

/// Removes our entries and the containers that were created for them. Absent when nothing is left.
std::optional<JSONC::Document> uninstall(JSONC::Document document, const HookTable& table);

}  // namespace quillstead::cli::HookEntries
