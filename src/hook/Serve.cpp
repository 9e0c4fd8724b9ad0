#include "hook/Budget.h"
#include "hook/ContextBudget.h"
#include "hook/FailOpenBelt.h"
#include "hook/Harness/CommandFlag.h"
#include "hook/Hook.h"
#include "hook/Lanes/MemoryLane.h"
#include "hook/Lanes/RulesCardFlag.h"
#include "hook/Lanes/RulesLane.h"
#include "hook/MCP/MCPBinary.h"
#include "hook/MCP/MCPClient.h"
#include "hook/SlotPlan.h"
#include "hook/StackOverflowProbe.h"
#include "hook/StandardInput.h"
#include "hook/Telemetry/StageClock.h"
#include "hook/Telemetry/TelemetryLine.h"
#include "hook/Telemetry/Trail.h"
#include "hook/Witness.h"
#include "support/Text/Text.h"

#include <chrono>
#include <string>
#include <utility>

namespace quillstead::hook::Hook {

namespace {

using Clock = OS::MonotonicClock;

constexpr Seconds allowance{2.5};

/// Absent when the payload cannot be read, or is not for this harness.
std::optional<HookInput> inputFor(const HarnessAdapter& adapter, std::string_view event) {
  const std::optional<std::string> data = StandardInput::readAll();
  std::optional<HookInput> input = data ? adapter.parse(*data) : std::nullopt;
  if (input && event != EventFlag::prompt) {
    // A sub-agent, or a new session, has not seen what the payload's session has seen.
    input->sessionID.reset();
    input->transcriptPath.reset();
  }
  return input;
}

/// What the lanes returned; empty for a lane that was not run.
struct Lanes {
  LaneOutcome rules;
  LaneOutcome memory;
};

Lanes runLanes(const HarnessAdapter& adapter, SlotPlan plan, const HookInput& input,
               const Deadline& deadline, const OS::Environment& environment, StageClock& stages) {
  const MCPClient client{.executable = MCPBinary::resolve(environment),
                         .clientName = adapter.clientName()};
  const RulesLane::Wanted wanted{.card = RulesCardFlag::isOn(environment),
                                 .cardCeiling = adapter.cardCeiling(),
                                 .cardHeadCeiling = adapter.cardHeadCeiling()};
  Lanes lanes;
  lanes.rules =
      stages.timed("rules", [&] { return RulesLane::run(input, wanted, client, deadline); });
  if (!plan.memory || Text::isBlank(input.prompt)) return lanes;
  if (lanes.rules.declineFast) {
    lanes.memory.fields = {"cards=MISS:declined"};
  } else {
    lanes.memory = stages.timed("cards", [&] { return MemoryLane::run(input, client, deadline); });
  }
  return lanes;
}

/// The trail fields of the lanes and the slot, corrected where a text did not fit.
Trail trailOf(std::vector<std::string> rulesFields, std::vector<std::string> memoryFields,
              std::optional<std::string_view> slotField, const ContextBudget::Fitted& fitted) {
  Trail trail;
  trail.append(std::move(rulesFields));
  trail.append(std::move(memoryFields));
  if (slotField) {
    trail.append(std::string(fitted.rulesOverBudget ? "index=MISS:over-budget" : *slotField));
  } else if (fitted.rulesOverBudget) {
    trail.replace("rules=1", "rules=MISS:over-budget");
  }
  if (fitted.cardsDropped > 0) trail.append("trimmed=" + std::to_string(fitted.cardsDropped));
  if (fitted.shortcutOverBudget) trail.replace("shortcut=1", "shortcut=MISS:over-budget");
  if (fitted.justEndedKept) trail.append("now=1");
  return trail;
}

struct Answer {
  std::optional<std::string> document;  ///< absent when there is nothing to inject
  Trail trail;
};

Answer compose(const HarnessAdapter& adapter, std::string_view event, SlotPlan plan, Lanes lanes,
               StageClock& stages) {
  auto [rules, memory] = std::move(lanes);
  SlotRules slotRules = SlotRules::of(plan.rules, std::move(rules.block), rules.indexSpan);
  const Clock::time_point start = Clock::now();
  const ContextBudget::Fitted fitted =
      ContextBudget::fit({.rules = std::move(slotRules.text),
                          .memory = std::move(memory.block),
                          .cardCount = memory.cardCount,
                          .cardSpans = std::move(memory.cardSpans),
                          .limit = adapter.contextBudget(),
                          .shortcut = std::move(memory.shortcut),
                          .justEnded = std::move(memory.justEnded)});
  std::optional<std::string> document;
  if (!fitted.texts.empty()) {
    document = adapter.envelope(Text::joined(fitted.texts, "\n\n"), event);
  }
  stages.record("compose", start);
  return {.document = std::move(document),
          .trail = trailOf(std::move(rules.fields), std::move(memory.fields), slotRules.trailField,
                           fitted)};
}

void print(const std::optional<std::string>& document, const HarnessAdapter& adapter,
           StageClock& stages) {
  const Clock::time_point start = Clock::now();
  if (document) {
    FailOpenBelt::answer(*document);
  } else {
    silence(adapter);
  }
  stages.record("write", start);
}

void log(std::optional<HookSlot> slot, const Trail& trail, const StageClock& stages,
         const Deadline& deadline, const OS::Environment& environment) {
  const std::int64_t total = deadline.elapsedMilliseconds();
  if (!slot && trail.empty()) return;
  std::string line = TelemetryLine::timestamp(std::chrono::system_clock::now());
  line.append(" ").append(std::to_string(total)).append("ms ");
  if (slot) line.append("slot=").append(SlotFlag::name(*slot)).append(trail.empty() ? "" : " ");
  line.append(trail.joined());
  if (const auto segment = stages.segment(total)) line.append(" | ").append(*segment);
  TelemetryLine::append(line + "\n", TelemetryLine::path(environment));
}

}  // namespace

std::int32_t serve(const HarnessAdapter& adapter, std::optional<HookSlot> slot,
                   std::string_view event, const OS::Environment& environment) {
  const Deadline deadline{.start = Clock::now(), .allowance = allowance};
  FailOpenBelt::arm(adapter.silence());
  StackOverflowProbe::recurseIfAsked(environment);

  StageClock stages;
  const auto input = stages.timed("parse", [&] { return inputFor(adapter, event); });
  if (!input) return silence(adapter);
  Witness::warnIfCwdWitnessesDisagree(input->cwd);

  const SlotPlan plan = SlotPlan::of(slot);
  Lanes lanes = runLanes(adapter, plan, *input, deadline, environment, stages);
  const Answer answer = compose(adapter, event, plan, std::move(lanes), stages);
  print(answer.document, adapter, stages);
  log(slot, answer.trail, stages, deadline, environment);
  return 0;
}

std::int32_t silence(const HarnessAdapter& adapter) {
  if (const auto text = adapter.silence()) FailOpenBelt::answer(*text);
  return 0;
}

}  // namespace quillstead::hook::Hook
