#pragma once

#include "server/Index/CardScores.h"
#include "server/Index/Database.h"
#include "server/Index/IndexTables.h"
#include "server/Index/Words.h"

#include <cstddef>
#include <optional>
#include <vector>

/// Finds the cards with terms of a prompt.
namespace quillstead::server::CardSearch {

using CardScores::Scored;

/// The cards worth showing, in no order: the `limit` best, and those with the same score as the
/// last of them. `cards`: how many the index has. `common`: the terms known to be in more than half
/// of the cards; those that the search finds are added. Absent when the database failed.
std::optional<std::vector<Scored>> find(Database& database,
                                        const std::vector<Words::SearchTerm>& wanted,
                                        std::size_t cards, std::size_t limit, CommonTerms& common);

}  // namespace quillstead::server::CardSearch
