#pragma once

#include "hook/Harness/CommandFlag.h"
#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/Harnesses.h"

#include <span>
#include <string_view>
#include <variant>

namespace quillstead::hook::HarnessFlag {

struct Found {
  const HarnessAdapter& adapter;
};
struct Unknown {
  std::string_view name;  ///< the value on the command line, which is no harness's name
};
struct Missing {};
using Outcome = std::variant<Found, Unknown, Missing>;

/// The harness that `--harness` names.
inline Outcome parse(std::span<char* const> arguments) {
  const auto name = CommandFlag::value("--harness", arguments);
  if (!name) return Missing{};
  if (const HarnessAdapter* const adapter = Harnesses::named(*name)) return Found{*adapter};
  return Unknown{*name};
}

}  // namespace quillstead::hook::HarnessFlag
