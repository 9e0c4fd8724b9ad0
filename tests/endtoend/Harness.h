#pragma once

#include "helpers/HarnessFacts.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// What a payload says; an absent field's key is left out.
struct Said {
  std::string prompt = "how do we name tests?";
  std::optional<std::string> directory = {};
  std::optional<std::string> session = {};
  std::optional<std::string> transcript = {};
};

/// A harness as the hook sees it.
struct Harness : HarnessFacts {
  /// The payload as this harness writes it.
  [[nodiscard]] std::string payload(const Said& said) const;

  /// The answer document, as JSON, that hands over `context`.
  [[nodiscard]] std::string envelope(std::string_view context) const;

  /// What is on standard output when nothing is injected.
  [[nodiscard]] std::string silentOutput() const { return silence ? *silence + "\n" : ""; }

  /// The arguments of the rules tool, as JSON, when the payload said `said`.
  [[nodiscard]] std::string rulesArguments(const Said& said, bool card) const;

  /// Likewise of the memory tool.
  [[nodiscard]] std::string memoryArguments(const Said& said) const;

 private:
  [[nodiscard]] std::vector<std::string> placeArguments(const Said& said) const;
};

/// All of them.
const std::vector<Harness>& harnesses();
const Harness& harness(std::string_view name);

/// The slots that answer prompts; the empty one means none given.
inline const std::vector<std::string> promptSlots{"", "rules", "index", "recall"};

}  // namespace quillstead
