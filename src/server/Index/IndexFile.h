#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Where the index of a scope is kept.
namespace quillstead::server::IndexFile {

/// Creates the index file if it is missing, for the user only, and returns its path; an empty path
/// when there is no place for it. Each pair of a personal and a project store has its own index, so
/// that one project cannot change the ranks in another.
std::string place(const Scope& scope, const OS::Environment& environment);

/// Returns 0, 1, 2 and so on for the index at `path`, across all servers, and starts again after
/// the last number. Always 0 when the number cannot be stored.
std::uint64_t nextTurn(const std::string& path);

/// Removes indexes beside `path` that are no longer needed: of stores that no longer exist, and of
/// other versions that were not written for a month. Works only once a day.
void prune(const std::string& path);

}  // namespace quillstead::server::IndexFile
