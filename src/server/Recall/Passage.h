#pragma once

#include "server/Index/Words.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// Finds the part of a long card that a prompt is about.
namespace quillstead::server::Passage {

/// The first of `text`, at most `limit` bytes, to the end of a line or word where one is near.
std::string_view beginning(std::string_view text, std::size_t limit);

/// The part of `text`, at most `limit` bytes of it, in which the terms say most; the first of equal
/// ones. It begins with a line where that leaves room, and takes no character apart.
std::string_view best(std::string_view text, const std::vector<Words::SearchTerm>& terms,
                      std::size_t limit);

}  // namespace quillstead::server::Passage
