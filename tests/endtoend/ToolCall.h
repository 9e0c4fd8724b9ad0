#pragma once

#include "Harness.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// A call of one of the memory service's tools, as a harness announces it before it is made.
struct ToolCall {
  Harness harness;
  std::string tool;
  std::string identityKey;  ///< the payload's key that tells who calls
  std::string stampKey;     ///< the key of the tool's input that carries it

  /// The payload; `input` is an object, as JSON.
  [[nodiscard]] std::string payload(std::string_view input, std::string_view identity = "me") const;

  /// The answer document that gives the tool this input.
  [[nodiscard]] std::string answer(std::string_view input) const;

  /// The tool's input in an answer, as it is written there.
  [[nodiscard]] std::string_view inputIn(std::string_view answer) const;
};

/// A stamped call in each harness.
const std::vector<ToolCall>& toolCalls();

/// The same for Cursor's three tools alone, and for the others.
std::vector<ToolCall> cursorCalls();
std::vector<ToolCall> subagentCalls();

}  // namespace quillstead
