#pragma once

#include "hook/MCP/MCPClient.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <string>
#include <string_view>

namespace quillstead::unit {

/// A memory server with replies of the test's choosing; without any it answers nothing.
class Server {
 public:
  /// What it prints when `tool` is called.
  void print(std::string_view tool, std::string_view output) const;

  /// Prints the response to the tool call with this result, a JSON text.
  void answer(std::string_view tool, std::string_view result) const;

  /// Prints a result of one text item with this "_meta", a JSON text.
  void answer(std::string_view tool, std::string_view text, std::string_view meta) const;

  void complain(std::string_view tool, std::string_view error) const;
  void exitWith(std::string_view tool, int status) const;

  [[nodiscard]] std::string executable() const { return child("RepliesFromFiles"); }
  [[nodiscard]] hook::MCPClient client(std::string_view name = "codex") const;

  [[nodiscard]] bool wasCalled(std::string_view tool) const;

  /// All that the call of `tool` sent.
  [[nodiscard]] std::string request(std::string_view tool) const;

  /// The arguments of the call of `tool`.
  [[nodiscard]] JSON::Object arguments(std::string_view tool) const;

 private:
  [[nodiscard]] std::string file(std::string_view tool, std::string_view kind) const;

  TemporaryDirectory directory_;
  ScopedVariable replies_{"QUILLSTEAD_TEST_REPLIES", directory_.path()};
};

/// Enough time for anything that ends by itself, on a busy machine too.
inline constexpr hook::Seconds ample{120};

inline hook::Deadline ampleDeadline() {
  return {.start = OS::MonotonicClock::now(), .allowance = ample};
}

/// How long `action` takes.
template <typename Action>
hook::Seconds timeOf(Action action) {
  const auto start = OS::MonotonicClock::now();
  action();
  return OS::MonotonicClock::now() - start;
}

}  // namespace quillstead::unit
