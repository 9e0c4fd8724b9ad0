#pragma once

#include <string>
#include <string_view>

/// The fences in which replies hand rules and cards to the agent.
namespace quillstead::Fence {

inline constexpr std::string_view rulesOpening = "<user-rules>\n";
inline constexpr std::string_view rulesClosing = "\n</user-rules>";
inline constexpr std::string_view memoryOpening = "<quillstead-memory>\n";
inline constexpr std::string_view memoryClosing = "\n</quillstead-memory>";

/// `text` with the "<" of every tag that could pass for a fence written "&lt;", so that what stands
/// in a fence cannot end it or pretend to be another.
std::string harmless(std::string_view text);

}  // namespace quillstead::Fence
