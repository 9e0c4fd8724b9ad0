#pragma once

#include "server/Index/Database.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Finds the cards that have words of a prompt.
namespace quillstead::server::CardSearch {

struct Scored {
  std::int64_t id;
  double score;  ///< above 0; the higher the better
};

/// The cards worth showing, in no order: the `limit` best and those that are as good as the last of
/// them. Absent when the database failed.
std::optional<std::vector<Scored>> find(Database& database, std::string_view prompt,
                                        std::size_t limit);

}  // namespace quillstead::server::CardSearch
