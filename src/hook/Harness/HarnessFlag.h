#pragma once

#include "hook/Harness/HarnessAdapter.h"

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
Outcome parse(std::span<char* const> arguments);

}  // namespace quillstead::hook::HarnessFlag
