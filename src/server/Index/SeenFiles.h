#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The files of a survey as the index keeps them: in parts, each of which is read at once.
namespace quillstead::server::SeenFiles {

/// So many files are one part.
inline constexpr std::size_t fewFiles = 2'000;

/// Of more files a part is a tenth, within these bounds.
inline constexpr std::size_t smallestPart = 500;
inline constexpr std::size_t largestPart = 2'000;

/// How many parts so many files are kept in.
std::int64_t partsFor(std::size_t files);

/// Puts these, which all have a stamp, into the place of those before.
bool keep(Database& database, const std::vector<Survey::File>& files);

bool forget(Database& database);

/// Looks at the files of one part, counted from 0. True when each is as it was seen; false also
/// when the part could not be read.
bool areUnchanged(Database& database, std::int64_t part, const Survey& survey);

}  // namespace quillstead::server::SeenFiles
