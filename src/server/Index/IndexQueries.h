#pragma once

#include "server/Index/CommonTerms.h"
#include "server/Index/Database.h"
#include "server/Index/Index.h"
#include "server/Index/Words.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

/// Queries of an index. Each result is absent when the database failed.
namespace quillstead::server::IndexQueries {

/// The cards for a prompt's terms, at most `limit`, ranked over all cards. Words in the title weigh
/// most, then tags, then the body. Equal ranks are ordered by store, the project first, then by
/// file name. Cards far worse than the best are left out. At least two cards of each store are kept
/// if they match. `common`: gets those of the index, and what this search found out.
std::optional<std::vector<CardPlace>> search(Database& database,
                                             const std::vector<Words::SearchTerm>& terms,
                                             std::size_t limit, CommonTerms& common);

/// As `Index::titles`.
std::optional<Titles> titles(Database& database, std::size_t enough);

std::optional<std::vector<CardPlace>> withTitle(Database& database, std::string_view title,
                                                std::size_t limit);

}  // namespace quillstead::server::IndexQueries
