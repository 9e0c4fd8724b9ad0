#pragma once

#include "support/JSON/View.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// What is so of one harness, as harnesses.json beside this file says. Tests, fuzz targets and
/// scripts know it from there only; HarnessesTest holds every adapter against it.
struct HarnessFacts {
  std::string name;
  std::optional<std::string> silence;
  std::optional<std::size_t> budget;           ///< bytes of context
  std::optional<std::size_t> cardCeiling;      ///< bytes
  std::optional<std::size_t> cardHeadCeiling;  ///< bytes
  std::string stamp;                           ///< whose name calls of tools carry
  bool takesDecision;
  bool refusesCursorsPayload;
  std::string sessionKey;
  bool hasRoots;       ///< names its directory in a list of workspace roots
  bool hasTranscript;  ///< its payload's transcript is read
  std::string form;    ///< of an answer, as JSON; the text handed over stands as "CONTEXT"
};

/// All of them, in the order in which messages name them.
const std::vector<HarnessFacts>& harnessFacts();
const HarnessFacts& harnessFacts(std::string_view name);

/// The text that `answer` hands to the harness; absent when it has not the harness's form, or holds
/// anything else.
std::optional<std::string> contextIn(JSON::ObjectView answer, const HarnessFacts& harness);

}  // namespace quillstead
