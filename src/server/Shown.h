#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// What files and requests say, made fit to be shown to an agent: it cannot end the fence that it
/// stands in, nor open another, and it holds nothing that a reader of the text would not see.
namespace quillstead::server::Shown {

/// The most bytes of a line from `line`.
inline constexpr std::size_t longestLine = 200;

/// `text` with every "<" that could begin a tag written "&lt;". Format characters and control
/// characters but tab and line feed are dropped; joiners stay where a script or an emoji needs
/// them. Invalid UTF-8 becomes U+FFFD. What comes out comes out of it unchanged.
std::string text(std::string_view text);

/// A name or a title: `text` on one line of at most `longestLine` bytes, cut between characters
/// with "…" at its end.
std::string line(std::string_view text);

/// For what the user wrote and wants back as it is: only the tags of our own fences are escaped,
/// in whatever letters they are written.
std::string escapeFences(std::string_view text);

/// `text` without every whole block of rules or cards that was shown, fences included. A fence that
/// is never closed is left as it is.
std::string withoutOwnBlocks(std::string_view text);

}  // namespace quillstead::server::Shown
