#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Where the index of a scope is kept.
namespace quillstead::server::IndexFile {

/// The path of its file, which is there afterwards, belongs to the user alone and may be empty. The
/// path itself is empty when there is no place for it. Each pair of a personal and a project store
/// has an index of its own, so that what one project holds cannot change the ranks in another.
std::string place(const Scope& scope, const OS::Environment& environment);

/// Gives 0, 1, 2 and so on, to whoever asks next for the index at `path`; begins anew after the
/// last number. Always 0 when that cannot be kept.
std::uint64_t nextTurn(const std::string& path);

/// Removes the indexes beside `path` that are of no more use: of stores that are gone, and of other
/// versions that nobody wrote for a month. Does something once a day only.
void prune(const std::string& path);

}  // namespace quillstead::server::IndexFile
