#pragma once

#include <string>
#include <string_view>

/// Names of card files.
namespace quillstead::server::CardName {

/// A file name made from a title: its letters and digits in lower case, hyphens between, at most 60
/// bytes, then `mark` and ".md".
std::string fromTitle(std::string_view title, std::string_view mark);

/// Six random letters and digits, one of a thousand million, so that cards of one title that are
/// added in two clones of a repository do not meet in one file.
std::string randomMark();

/// Why a name that a caller gave cannot be a file in a store's memory directory.
enum class Flaw { none, absolute, leavesStore, inSubdirectory, unusable };

Flaw flawOf(std::string_view name);

}  // namespace quillstead::server::CardName
