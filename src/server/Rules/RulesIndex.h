#pragma once

#include "server/Index/Index.h"

#include <cstddef>
#include <string>

/// The list of titles that closes a rules block, so that the agent knows what it can ask for.
namespace quillstead::RulesIndex {

/// The most bytes an index takes when nothing smaller is asked for.
inline constexpr std::size_t ordinaryLimit = 6'000;

/// At most `limit` bytes: a heading with the number of cards and a line for each title, as many as
/// fit, then how many more there are. Empty when there are no cards or not one title fits.
std::string rendered(const Titles& titles, std::size_t limit);

}  // namespace quillstead::RulesIndex
