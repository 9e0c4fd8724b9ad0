#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace quillstead {

/// The moment at which the harness runs the hook. No slot at all is a state of its own: rules and
/// memory together.
enum class HookSlot { rules, index, recall, pretool };

namespace SlotFlag {

/// The slots' names on the command line, in the order of `HookSlot`.
inline constexpr std::array<std::string_view, 4> knownNames{"rules", "index", "recall", "pretool"};

/// The slot of exactly that name.
std::optional<HookSlot> named(std::string_view name);

std::string_view name(HookSlot slot);

}  // namespace SlotFlag
}  // namespace quillstead
