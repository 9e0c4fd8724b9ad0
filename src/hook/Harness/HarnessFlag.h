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
  std::string_view name;  ///< what the command line says, which no harness is called
};
struct Missing {};
using Outcome = std::variant<Found, Unknown, Missing>;

/// What `--harness` on the command line names.
Outcome parse(std::span<char* const> arguments);

}  // namespace quillstead::hook::HarnessFlag
