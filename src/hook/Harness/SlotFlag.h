#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace quillstead::hook {

/// What part of the work the harness runs the hook for. Without a slot, it is rules and memory
/// together.
enum class HookSlot { rules, index, recall, pretool };

namespace SlotFlag {

/// The slots' names on the command line, in the order of `HookSlot`.
inline constexpr std::array<std::string_view, 4> knownNames{"rules", "index", "recall", "pretool"};

/// Empty for any other value.
constexpr std::string_view name(HookSlot slot) {
  switch (slot) {
    case HookSlot::rules:
      return "rules";
    case HookSlot::index:
      return "index";
    case HookSlot::recall:
      return "recall";
    case HookSlot::pretool:
      return "pretool";
  }
  return {};
}

/// The slot of exactly that name.
constexpr std::optional<HookSlot> named(std::string_view name) {
  for (std::size_t at = 0; at < knownNames.size(); ++at) {
    if (knownNames[at] == name) return static_cast<HookSlot>(at);
  }
  return std::nullopt;
}

/// Checks that the list has exactly one name for each slot, in order.
constexpr bool namesMatchSlots() {
  for (std::size_t at = 0; at < knownNames.size(); ++at) {
    if (name(static_cast<HookSlot>(at)) != knownNames[at]) return false;
  }
  return name(static_cast<HookSlot>(knownNames.size())).empty();
}
static_assert(namesMatchSlots());

}  // namespace SlotFlag
}  // namespace quillstead::hook
