#include "hook/Harness/SlotFlag.h"

#include <cstddef>

namespace quillstead::SlotFlag {

std::optional<HookSlot> named(std::string_view name) {
  for (std::size_t at = 0; at < knownNames.size(); ++at) {
    if (knownNames[at] == name) return static_cast<HookSlot>(at);
  }
  return std::nullopt;
}

std::string_view name(HookSlot slot) { return knownNames[static_cast<std::size_t>(slot)]; }

}  // namespace quillstead::SlotFlag
