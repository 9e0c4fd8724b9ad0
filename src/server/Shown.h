#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Makes text from files and requests safe to show to an agent: it cannot close its fence or open
/// another, and contains nothing that a reader of the text would not see.
namespace quillstead::server::Shown {

/// The most bytes of a line from `line`.
inline constexpr std::size_t longestLine = 200;

/// `text` with every "<" that could begin a tag written "&lt;". Format and control characters are
/// dropped, except tab, line feed, and joiners that a script or an emoji needs. Line and paragraph
/// separators become line feeds, and invalid UTF-8 U+FFFD. Applying it twice gives the same result.
std::string text(std::string_view text);

/// A name or a title: `text` on one line of at most `longestLine` bytes, cut between characters
/// with "…" at its end.
std::string line(std::string_view text);

/// For the user's own text, which should come back unchanged: only the tags of our own fences are
/// escaped, in any mix of cases.
std::string escapeFences(std::string_view text);

/// `text` without every whole block of rules or cards that was shown, fences included. A fence that
/// is never closed is left as it is.
std::string withoutOwnBlocks(std::string_view text);

}  // namespace quillstead::server::Shown
