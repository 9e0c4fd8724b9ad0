#include "hook/Hook.h"

#include "hook/FailOpenBelt.h"
#include "hook/Harness/CommandFlag.h"
#include "hook/Harness/HarnessFlag.h"
#include "hook/Harness/Harnesses.h"
#include "hook/Harness/SlotFlag.h"
#include "hook/PretoolAnswer.h"
#include "hook/SessionStamp.h"
#include "hook/SubagentStamp.h"
#include "hook/Telemetry/Stderr.h"
#include "support/Text/Text.h"

#include <array>
#include <string>
#include <string_view>
#include <variant>

namespace quillstead::hook::Hook {

namespace {

using namespace std::string_view_literals;

std::string help() {
  return "quillstead-hook: puts your stored memory into your coding agent's context.\n"
         "\n"
         "Coding agents run it. You need two commands:\n"
         "  quillstead install   sets up your coding agents to run it\n"
         "  quillstead doctor    says whether it works\n"
         "\n"
         "Options, for an agent's settings:\n"
         "  --harness NAME       " +
         Text::joined(Harnesses::knownNames(), ", ") + "\n  --slot SLOT          " +
         Text::joined(SlotFlag::knownNames, ", ") +
         "\n"
         "  --event EVENT        SubagentStart, SessionStart\n"
         "  --decision allow     Codex and OpenCode only\n"
         "  --version            prints the version\n"
         "More: man quillstead-hook";
}

/// Every refusal gets the same answer, whatever the harness.
std::int32_t refuse(std::string_view reason, std::string_view known) {
  Stderr::line(Text::joined(std::array{reason, " — injecting nothing. "sv, known, "."sv}, ""));
  FailOpenBelt::answer(R"({"continue":true})");
  return 0;
}

std::int32_t refuseHarness(const std::string& reason) {
  return refuse(reason, "Known harnesses: " + Text::joined(Harnesses::knownNames(), ", "));
}

std::int32_t refuseSlot(std::string_view name) {
  return refuse("unknown slot \"" + std::string(name) + "\"",
                "Known slots: " + Text::joined(SlotFlag::knownNames, ", "));
}

PretoolAnswer::Stamp stampOf(const HarnessAdapter& adapter) {
  switch (adapter.stamp()) {
    case CallStamp::session:
      return SessionStamp::answer;
    case CallStamp::subagent:
      break;
  }
  return SubagentStamp::answer;
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
    const HarnessAdapter& adapter = harness.adapter;
    const auto slotName = CommandFlag::value("--slot", arguments);
    const auto slot = slotName ? SlotFlag::named(*slotName) : std::nullopt;
    if (slotName && !slot) return refuseSlot(*slotName);
    if (slot == HookSlot::pretool) {
      PretoolAnswer::serve(environment, stampOf(adapter), DecisionFlag::parse(arguments, adapter));
    }
    return serve(adapter, slot, EventFlag::parse(arguments), environment);
  }
};

}  // namespace

std::int32_t run(std::span<char* const> arguments, const OS::Environment& environment) {
  const std::string_view only = arguments.size() == 1 ? arguments.front() : "";
  if (only == "--version" || only == "--help") {
    FailOpenBelt::answer(only == "--help" ? help() : "quillstead-hook " QUILLSTEAD_VERSION);
    return 0;
  }
  return std::visit(Dispatch{arguments, environment}, HarnessFlag::parse(arguments));
}

}  // namespace quillstead::hook::Hook
