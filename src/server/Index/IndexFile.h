#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Environment.h"

#include <string>

/// Where the index of a scope is kept.
namespace quillstead::IndexFile {

/// The path of its file, in a directory that is there afterwards; empty when there is no place for
/// it. Each pair of a personal and a project store has an index of its own, so that what one
/// project holds cannot change the ranks in another.
std::string place(const Scope& scope, const OS::Environment& environment);

}  // namespace quillstead::IndexFile
