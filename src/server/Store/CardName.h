#pragma once

#include <string>
#include <string_view>

/// Names of card files.
namespace quillstead::CardName {

/// A file name made from a title: its letters and digits in lower case, hyphens between, at most 60
/// bytes before ".md". `attempt` 1 gives the plain name, 2 and on give it with that number.
std::string fromTitle(std::string_view title, unsigned attempt);

/// Why a name that a caller gave cannot be a file in a store's memory directory.
enum class Flaw { none, absolute, leavesStore, inSubdirectory, unusable };

Flaw flawOf(std::string_view name);

}  // namespace quillstead::CardName
