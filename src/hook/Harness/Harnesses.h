#pragma once

#include "hook/Harness/HarnessAdapter.h"

#include <span>
#include <string_view>
#include <vector>

/// The harnesses that the hook knows.
namespace quillstead::hook::Harnesses {

/// Every adapter, in the order used in messages.
std::span<const HarnessAdapter* const> all();

/// The adapter of exactly that name; null when there is none.
const HarnessAdapter* named(std::string_view name);

/// All names, in that order.
std::vector<std::string_view> knownNames();

}  // namespace quillstead::hook::Harnesses
