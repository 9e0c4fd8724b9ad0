#pragma once

#include "server/Index/Database.h"
#include "server/Index/Index.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

/// What can be asked of an index. Each answer is absent when the database failed.
namespace quillstead::server::IndexQueries {

/// The cards for a prompt, at most `limit`. Ranked by bm25 over all cards, a word in the title
/// weighing most, then the tags, then the body; equal ranks put the project first, then go by file
/// name. Cards far behind the best are left out. Of a store that has matching cards two are among
/// them, however many of the other's are better.
std::optional<std::vector<CardPlace>> search(Database& database, std::string_view prompt,
                                             std::size_t limit);

/// At most `limit` titles, the project's before the personal, the newest file first.
std::optional<Titles> titles(Database& database, std::size_t limit);

std::optional<std::vector<CardPlace>> withTitle(Database& database, std::string_view title,
                                                std::size_t limit);

}  // namespace quillstead::server::IndexQueries
