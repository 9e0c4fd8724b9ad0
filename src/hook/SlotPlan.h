#pragma once

#include "hook/Harness/SlotFlag.h"
#include "hook/Lanes/LaneOutcome.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook {

/// What the prompt of a slot brings to the agent. This is the one place that decides it.
struct SlotPlan {
  enum class Rules {
    whole,
    head,   ///< without the index that closes them; whole when they have none
    index,  ///< that index alone
    none,   ///< asked for all the same, for the log and to know a broken server
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
      case HookSlot::pretool:  // is answered elsewhere
        break;
    }
    return {.rules = Rules::whole, .memory = false};
  }
};

/// The rules that go out at a slot.
struct SlotRules {
  std::optional<std::string> text;             ///< fenced; absent when none go out
  std::optional<std::string_view> trailField;  ///< the slot's own word on them, when it has one

  /// The part that `plan` wants of the rules lane's block.
  static SlotRules of(SlotPlan::Rules part, std::optional<std::string> block,
                      std::optional<std::int64_t> indexSpan);
};

}  // namespace quillstead::hook
