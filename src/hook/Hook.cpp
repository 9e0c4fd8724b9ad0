#include "hook/Hook.h"

#include "hook/BlockSplit.h"
#include "hook/Budget.h"
#include "hook/ContextBudget.h"
#include "hook/FailOpenBelt.h"
#include "hook/Harness/CommandFlag.h"
#include "hook/Harness/Cursor.h"
#include "hook/Harness/HarnessFlag.h"
#include "hook/Harness/Harnesses.h"
#include "hook/Lanes/MemoryLane.h"
#include "hook/Lanes/RulesCardFlag.h"
#include "hook/Lanes/RulesLane.h"
#include "hook/MCP/MCPBinary.h"
#include "hook/MCP/MCPClient.h"
#include "hook/SessionStamp.h"
#include "hook/StackOverflowProbe.h"
#include "hook/StandardInput.h"
#include "hook/StandardOutput.h"
#include "hook/SubagentStamp.h"
#include "hook/Telemetry/StageClock.h"
#include "hook/Telemetry/Stderr.h"
#include "hook/Telemetry/TelemetryLine.h"
#include "hook/Telemetry/Trail.h"
#include "hook/Witness.h"
#include "support/Text/Text.h"

#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::Hook {

namespace {

using Clock = OS::MonotonicClock;

constexpr Seconds allowance{2.5};

// --- The command line

template <typename Names>
std::string joined(const Names& names, std::string_view separator) {
  std::string text;
  for (const std::string_view name : names) {
    if (!text.empty()) text += separator;
    text += name;
  }
  return text;
}

/// Every refusal gets the same answer, whatever the harness.
std::int32_t refuse(const std::string& reason, const std::string& known) {
  Stderr::line(reason + " — injecting nothing. " + known + ".");
  StandardOutput::answer(R"({"continue":true})");
  return 0;
}

std::int32_t refuseHarness(const std::string& reason) {
  return refuse(reason, "Known harnesses: " + joined(Harnesses::knownNames(), ", "));
}

std::int32_t refuseSlot(std::string_view name) {
  return refuse("unknown slot \"" + std::string(name) + "\"",
                "Known slots: " + joined(SlotFlag::knownNames, ", "));
}

std::int32_t answerPretool(const HarnessAdapter& adapter, const OS::Environment& environment) {
  const bool isCursor = dynamic_cast<const CursorAdapter*>(&adapter) != nullptr;
  return isCursor ? SessionStamp::serve(environment) : SubagentStamp::serve(environment);
}

/// Hands the run on by what `--harness` says.
struct Dispatch {
  std::span<char* const> arguments;
  const OS::Environment& environment;

  std::int32_t operator()(const HarnessFlag::Missing&) const {
    return refuseHarness("no --harness <name> given");
  }
  std::int32_t operator()(const HarnessFlag::Unknown& harness) const {
    return refuseHarness("unknown harness \"" + std::string(harness.name) + "\"");
  }
  std::int32_t operator()(const HarnessFlag::Found& harness) const {
    const auto slotName = CommandFlag::value("--slot", arguments);
    if (!slotName) return serve(harness.adapter, std::nullopt, environment);
    const auto slot = SlotFlag::named(*slotName);
    if (!slot) return refuseSlot(*slotName);
    if (*slot == HookSlot::pretool) return answerPretool(harness.adapter, environment);
    return serve(harness.adapter, slot, environment);
  }
};

// --- The road of one prompt

/// One served prompt, from its lanes to its telemetry line.
class Serving {
 public:
  Serving(const HarnessAdapter& adapter, std::optional<HookSlot> slot,
          const OS::Environment& environment, Clock::time_point start)
      : adapter_(adapter),
        slot_(slot),
        environment_(environment),
        deadline_{.start = start, .allowance = allowance} {}

  /// Absent when there is no payload of use.
  std::optional<HookInput> readInput() {
    const Clock::time_point start = Clock::now();
    const std::optional<std::string> data = StandardInput::readAll();
    std::optional<HookInput> input = data ? adapter_.parse(*data) : std::nullopt;
    stages_.record("parse", start);
    return input;
  }

  void runLanes(const HookInput& input) {
    const MCPClient client{.executable = MCPBinary::resolve(environment_),
                           .clientName = adapter_.clientName()};
    runRules(input, client);
    const bool wantsMemory = !slot_ || *slot_ == HookSlot::recall;
    if (!wantsMemory || Text::isBlank(input.prompt)) return;
    if (rules_.declineFast) {
      trail_.append("cards=MISS:declined");
    } else {
      runMemory(input, client);
    }
  }

  void answer() {
    const std::optional<std::string> envelope = compose();
    const Clock::time_point start = Clock::now();
    if (envelope) {
      StandardOutput::answer(*envelope);
    } else {
      Hook::silence(adapter_);
    }
    stages_.record("write", start);
  }

  void log() const {
    const std::int64_t total = deadline_.elapsedMilliseconds();
    std::string trail = trail_.joined();
    if (slot_) {
      const std::string slot = "slot=" + std::string(SlotFlag::name(*slot_));
      trail = trail.empty() ? slot : slot + " " + trail;
    }
    if (trail.empty()) return;

    std::string line = TelemetryLine::timestamp(std::chrono::system_clock::now());
    line.append(" ").append(std::to_string(total)).append("ms ").append(trail);
    if (const auto segment = stages_.segment(total)) line.append(" | ").append(*segment);
    TelemetryLine::append(line + "\n", TelemetryLine::path(environment_));
  }

 private:
  void runRules(const HookInput& input, const MCPClient& client) {
    const RulesLane::Wanted wanted{.card = RulesCardFlag::isOn(environment_),
                                   .cardCeiling = adapter_.cardCeiling(),
                                   .cardHeadCeiling = adapter_.cardHeadCeiling()};
    const Clock::time_point start = Clock::now();
    rules_ = RulesLane::run(input, wanted, client, deadline_);
    stages_.record("rules", start);
    trail_.append(std::move(rules_.fields));
  }

  void runMemory(const HookInput& input, const MCPClient& client) {
    const Clock::time_point start = Clock::now();
    memory_ = MemoryLane::run(input, client, deadline_);
    stages_.record("cards", start);
    trail_.append(std::move(memory_.fields));
  }

  /// The part of the rules that this slot is for, with the slot's own word in the trail.
  std::optional<std::string> rulesForSlot() {
    if (slot_ == HookSlot::recall) return std::nullopt;
    if (slot_ != HookSlot::rules && slot_ != HookSlot::index) return std::move(rules_.block);

    std::optional<BlockSplit::Halves> halves;
    if (rules_.block && rules_.indexSpan)
      halves = BlockSplit::split(*rules_.block, *rules_.indexSpan);
    if (slot_ == HookSlot::rules) return halves ? std::move(halves->head) : std::move(rules_.block);

    if (!halves) {
      trail_.append(rules_.indexSpan ? "index=MISS:no-span" : "index=0");
      return std::nullopt;
    }
    trail_.append("index=1");
    return std::move(halves->index);
  }

  /// The answer document; absent when there is nothing to inject.
  std::optional<std::string> compose() {
    std::optional<std::string> rules = rulesForSlot();
    const Clock::time_point start = Clock::now();
    const ContextBudget::Fitted fitted =
        ContextBudget::fit({.rules = std::move(rules),
                            .memory = std::move(memory_.block),
                            .cardCount = memory_.cardCount,
                            .cardSpans = std::move(memory_.cardSpans),
                            .limit = adapter_.contextBudget(),
                            .shortcut = std::move(memory_.shortcut),
                            .justEnded = std::move(memory_.justEnded)});
    std::optional<std::string> envelope;
    if (!fitted.texts.empty()) envelope = adapter_.envelope(joined(fitted.texts, "\n\n"));
    stages_.record("compose", start);
    correctTrail(fitted);
    return envelope;
  }

  /// What the lanes brought is not what went out when the budget had no room for it.
  void correctTrail(const ContextBudget::Fitted& fitted) {
    if (fitted.rulesOverBudget) {
      if (slot_ == HookSlot::index) {
        trail_.replaceBeginningWith("index=", "index=MISS:over-budget");
      } else {
        trail_.replaceBeginningWith("rules=", "rules=MISS:over-budget");
      }
    }
    if (fitted.cardsDropped > 0) trail_.append("trimmed=" + std::to_string(fitted.cardsDropped));
    if (fitted.shortcutOverBudget) trail_.replace("shortcut=1", "shortcut=MISS:over-budget");
    if (fitted.justEndedKept) trail_.append("now=1");
  }

  const HarnessAdapter& adapter_;
  std::optional<HookSlot> slot_;
  const OS::Environment& environment_;
  Deadline deadline_;
  StageClock stages_;
  Trail trail_;
  LaneOutcome rules_;
  LaneOutcome memory_;
};

}  // namespace

std::int32_t run(std::span<char* const> arguments, const OS::Environment& environment) {
  return std::visit(Dispatch{arguments, environment}, HarnessFlag::parse(arguments));
}

std::int32_t serve(const HarnessAdapter& adapter, std::optional<HookSlot> slot,
                   const OS::Environment& environment) {
  const Clock::time_point start = Clock::now();
  FailOpenBelt::arm(adapter.silence());
  StackOverflowProbe::recurseIfAsked(environment);

  Serving serving(adapter, slot, environment, start);
  const std::optional<HookInput> input = serving.readInput();
  if (!input) return silence(adapter);
  Witness::warnIfCwdWitnessesDisagree(input->cwd);
  serving.runLanes(*input);
  serving.answer();
  serving.log();
  return 0;
}

std::int32_t silence(const HarnessAdapter& adapter) {
  if (const auto text = adapter.silence()) StandardOutput::answer(*text);
  return 0;
}

}  // namespace quillstead::Hook
