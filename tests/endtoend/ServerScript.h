#pragma once

#include "support/JSON/Value.h"

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// What the scripted server wrote down of one time that it was started.
struct ServerCall {
  std::vector<std::string> arguments;
  std::vector<std::string> environment;
  std::string directory;
  std::string ignored;      ///< numbers of signals, each followed by a blank
  std::string blocked;      ///< likewise
  std::string descriptors;  ///< likewise
  std::string input;
  pid_t process;
  std::string lock;  ///< path of the file that it locks while it lives

  [[nodiscard]] bool isAlive() const;

  /// The requests on standard input, one a line.
  [[nodiscard]] std::vector<JSON::Value> requests() const;
  [[nodiscard]] std::string tool() const;

  /// The arguments of the tool as a compact document.
  [[nodiscard]] std::string toolArguments() const;
};

/// Tells tests/children/ScriptedServer what to do, tool by tool, and what it was asked. A tool that
/// is told nothing prints nothing and exits with status 0.
class ServerScript {
 public:
  explicit ServerScript(std::string directory);
  ServerScript(const ServerScript&) = delete;
  ServerScript& operator=(const ServerScript&) = delete;
  ~ServerScript();  ///< ends the servers that still run

  [[nodiscard]] const std::string& directory() const { return directory_; }

  /// `what`: output, error, delay, pieces, linger, signal, status or heir. See the server's source.
  void set(std::string_view tool, std::string_view what, std::string_view value);
  void set(std::string_view tool, std::string_view what, int value);

  /// `what`: unread or stubborn.
  void set(std::string_view what);

  /// Answers the handshake, then the tool call with a text and the metadata `meta`.
  void answer(std::string_view tool, std::string_view text, std::string_view meta);

  /// Answers the handshake, then the tool call with the object `result`.
  void giveResult(std::string_view tool, std::string_view result);

  /// Never answers.
  void sleepForEver(std::string_view tool) { set(tool, "delay", 600'000); }

  /// In the order in which they started; those that have read their requests.
  [[nodiscard]] const std::vector<ServerCall>& calls() const;

  /// Waits until so many calls are under way, and gives the last.
  [[nodiscard]] const ServerCall& awaitCall(std::size_t count) const;

 private:
  [[nodiscard]] std::string callDirectory(std::size_t number) const;

  std::string directory_;
  mutable std::vector<ServerCall> calls_;  ///< as far as they were read
};

}  // namespace quillstead
