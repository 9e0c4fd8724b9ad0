#pragma once

#include "server/Index/Words.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// Finds the passage of a long card that fits a prompt best.
namespace quillstead::server::Passage {

/// The beginning of `text`, at most `limit` bytes, cut at the end of a line or word if one is near.
std::string_view beginning(std::string_view text, std::size_t limit);

/// The passage of `text`, at most `limit` bytes, whose terms weigh most; the first of equal ones.
/// It begins at the start of a line if there is room, and never splits a character.
std::string_view best(std::string_view text, const std::vector<Words::SearchTerm>& terms,
                      std::size_t limit);

}  // namespace quillstead::server::Passage
