#include "hook/Harness/HarnessFlag.h"

#include "hook/Harness/CommandFlag.h"
#include "hook/Harness/Harnesses.h"

namespace quillstead::hook::HarnessFlag {

Outcome parse(std::span<char* const> arguments) {
  const auto name = CommandFlag::value("--harness", arguments);
  if (!name) return Missing{};
  if (const HarnessAdapter* const adapter = Harnesses::named(*name)) return Found{*adapter};
  return Unknown{*name};
}

}  // namespace quillstead::hook::HarnessFlag
