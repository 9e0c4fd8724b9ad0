#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "unit/helpers/JSONValues.h"

#include <ostream>
#include <string>
#include <string_view>

namespace quillstead::unit {

/// What an adapter makes of a payload, in one line that shows every field: "refused", or the
/// prompt, the directory, the session and the transcript, each in brackets, "-" when absent.
inline std::string described(const std::optional<hook::HookInput>& input) {
  if (!input) return "refused";
  const auto field = [](const std::optional<std::string>& text) {
    return text ? "[" + *text + "]" : std::string("-");
  };
  return "[" + input->prompt + "]" + field(input->cwd) + field(input->sessionID) +
         field(input->transcriptPath);
}

/// A payload and what the adapter is to make of it.
struct InputCase {
  std::string_view payload;
  std::string_view expected;
};

/// What no adapter takes for a payload.
inline constexpr std::string_view refusedByAll[]{"",
                                                 "not JSON",
                                                 "[]",
                                                 R"([{"prompt":"p"}])",
                                                 "\"prompt\"",
                                                 "42",
                                                 "null",
                                                 "{\"prompt\":\"p\"",
                                                 "{} {}",
                                                 "{\"prompt\":\"\xFF\"}",
                                                 R"({"prompt":"\ud800"})"};

}  // namespace quillstead::unit
