#pragma once

#include "cli/Setup/HookTable.h"
#include "cli/Setup/Programs.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <variant>

/// Our entries under "hooks" in a harness's settings. Those of others stay as and where they are.
namespace quillstead::cli::HookEntries {

/// Where the settings have another shape than the harness takes, and what is wrong there.
std::optional<JSONC::Complaint> misshapen(const JSONC::Document& document, const HookTable& table);

/// Whether there is an entry of ours. As for all below, the settings must have the right shape.
bool areThere(const JSONC::Document& document, const HookTable& table);

/// Whether a handler runs our hook itself, from wherever.
bool isOurs(const JSONC::Document& document, const JSONC::Node& handler);

/// Adds the entries that are missing, brings those that are there up to date, and makes one of
/// those that are there twice.
JSONC::Document install(JSONC::Document document, const HookTable& table, const Programs& programs);

/// Takes all entries of ours away, and what was made for them. Absent when that is the document.
std::optional<JSONC::Document> uninstall(JSONC::Document document, const HookTable& table);

}  // namespace quillstead::cli::HookEntries
