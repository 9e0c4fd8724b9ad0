#pragma once

#include "hook/Harness/SlotFlag.h"
#include "hook/Lanes/LaneOutcome.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook {

/// What a slot adds to a prompt. Only this file decides it.
struct SlotPlan {
  enum class Rules {
    whole,
    head,   ///< without the index at their end; whole when they have no index
    index,  ///< only that index
    none,   ///< still requested, for the log and to notice a broken server
  };
  Rules rules;
  bool memory;

  /// A slot without a plan does not compile.
  static constexpr SlotPlan of(std::optional<HookSlot> slot) {
    if (!slot) return {.rules = Rules::whole, .memory = true};
    switch (*slot) {
      case HookSlot::rules:
        return {.rules = Rules::head, .memory = false};
      case HookSlot::index:
        return {.rules = Rules::index, .memory = false};
      case HookSlot::recall:
        return {.rules = Rules::none, .memory = true};
      case HookSlot::pretool:  // answered elsewhere
        break;
    }
    return {.rules = Rules::whole, .memory = false};
  }
};

/// The rules that go out at a slot.
struct SlotRules {
  std::optional<std::string> text;             ///< fenced; absent when none go out
  std::optional<std::string_view> trailField;  ///< the slot's own field, when it has one

  /// The part that `plan` wants of the rules lane's block.
  static SlotRules of(SlotPlan::Rules part, std::optional<std::string> block,
                      std::optional<std::int64_t> indexSpan);
};

}  // namespace quillstead::hook
