#pragma once

#include "server/Index/CardScores.h"
#include "server/Index/Database.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

/// Finds the cards with words of a prompt.
namespace quillstead::server::CardSearch {

using CardScores::Scored;

/// The cards worth showing, in no order: the `limit` best and those that are as good as the last of
/// them. `cards`: how many there are. Absent when the database failed.
std::optional<std::vector<Scored>> find(Database& database, std::string_view prompt,
                                        std::size_t cards, std::size_t limit);

}  // namespace quillstead::server::CardSearch
