#pragma once

#include <string>
#include <string_view>

/// Names of card files.
namespace quillstead::server::CardName {

/// A file name from a title: its letters and digits in lower case, separated by hyphens, at most 60
/// bytes; then `mark` and ".md".
std::string fromTitle(std::string_view title, std::string_view mark);

/// Six random letters and digits (a thousand million combinations), so that cards with the same
/// title that are added in two clones of a repository get different files.
std::string randomMark();

/// Why a name from a caller cannot be a file in a store's memory directory.
enum class Flaw { none, absolute, leavesStore, inSubdirectory, unusable };

Flaw flawOf(std::string_view name);

}  // namespace quillstead::server::CardName
