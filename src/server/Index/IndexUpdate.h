#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"

#include <chrono>

/// Brings an index up to date with the files.
namespace quillstead::IndexUpdate {

/// Reads what changed, in steps that are each whole for whoever else uses the index. After
/// `patience` it ends with the step it is at, and the next update goes on from there: a large store
/// is indexed over several calls, none of which keeps its caller waiting. At least one step is
/// made. False when the database could not be read, locked or written.
bool run(Database& database, Survey& survey, std::chrono::milliseconds patience);

}  // namespace quillstead::IndexUpdate
