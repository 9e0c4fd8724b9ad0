#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The files of a survey, as the index stores them: in parts, so that a call can read just one.
namespace quillstead::server::SeenFiles {

/// Up to this many files are one part.
inline constexpr std::size_t fewFiles = 2'000;

/// With more files a part has a tenth of them, within these limits.
inline constexpr std::size_t smallestPart = 500;
inline constexpr std::size_t largestPart = 2'000;

/// The number of parts for this many files.
std::int64_t partsFor(std::size_t files);

/// Replaces what is stored. All `files` must have a stamp.
bool keep(Database& database, const std::vector<Survey::File>& files);

bool forget(Database& database);

/// Checks the files of one part, counted from 0. True when each still has its stamp. False also
/// when the part could not be read.
bool areUnchanged(Database& database, std::int64_t part, const Survey& survey);

}  // namespace quillstead::server::SeenFiles
