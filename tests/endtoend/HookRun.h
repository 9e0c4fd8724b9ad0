#pragma once

#include "support/OS/Descriptor.h"

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// The hook to test: QUILLSTEAD_HOOK_UNDER_TEST when it is set, else the one just built.
std::string hookExecutable();

/// The path of one of the programs in tests/children.
std::string childExecutable(std::string_view name);

/// True when the tests, and with them the hook, were built with sanitizers.
inline constexpr bool isSanitized = QUILLSTEAD_SANITIZED;

/// How a harness starts the hook.
struct HookStart {
  std::string executable = hookExecutable();
  std::vector<std::string> arguments;
  std::map<std::string, std::string> environment;  ///< all of it
  std::string directory;                           ///< empty: the test's
  std::string root;                                ///< empty: the system's; else needs privileges
  std::vector<int> closedDescriptors;              ///< of 0, 1 and 2
  std::vector<int> extraDescriptors;               ///< open in the hook without need
  std::vector<int> blockedSignals;
  std::vector<int> ignoredSignals;          ///< every other one has its default disposition
  std::optional<std::size_t> addressSpace;  ///< bytes
  std::string inputPath;                    ///< a file in place of the pipe for standard input
  std::string outputPath;                   ///< a file in place of the pipe for standard output
  std::string errorPath;                    ///< likewise for standard error
  std::optional<int> nonBlocking;           ///< 0 or 1: the hook's end of this pipe does not block
  bool countsWrites = false;                ///< 1 and 2 keep apart what each write brings (Linux)
};

/// How a run of the hook ended.
struct HookEnd {
  std::string output;
  std::string error;
  int outputWrites = 0;  ///< when the start counts them
  int errorWrites = 0;
  std::optional<int> status;  ///< absent when a signal ended it
  std::optional<int> signal;
  std::chrono::milliseconds duration{};
  std::size_t peakMemory = 0;  ///< bytes, of it and of its server
};

/// One hook process. A test that waits for one longer than a minute fails and the process is
/// killed.
class HookRun {
 public:
  explicit HookRun(const HookStart& start);
  HookRun(const HookRun&) = delete;
  HookRun& operator=(const HookRun&) = delete;
  ~HookRun();

  [[nodiscard]] pid_t process() const { return process_; }

  /// Writes to standard input; returns when the pipe has taken all of it. A pipe holds 64 KiB: what
  /// was fed beyond that was read by the hook.
  void feed(std::string_view bytes);
  void closeInput() { input_.close(); }

  /// Closes our end of a stream, as a harness that has gone away does.
  void stopListening() { output_.close(); }
  void stopListeningToErrors() { error_.close(); }

  /// Returns when the hook has begun its answer, of which it takes nothing yet.
  void awaitAnswer() const;

  void send(int signal) const;

  /// Closes standard input and returns when the hook has ended and all that it wrote is here.
  HookEnd finish();

 private:
  void start(const HookStart& start);
  void transferUntil(const std::function<bool()>& isDone);
  bool hasEnded();

  OS::Descriptor input_;
  OS::Descriptor output_;
  OS::Descriptor error_;
  pid_t process_ = -1;
  std::chrono::steady_clock::time_point started_;
  std::string_view unwritten_;
  bool reaped_ = false;
  HookEnd end_;
};

/// Starts the hook, gives it `input` and sees it to its end.
HookEnd runHook(const HookStart& start, std::string_view input);

/// Waits until `condition` holds; the test fails when it does not within half a minute.
void awaitThat(const std::function<bool()>& condition);

}  // namespace quillstead
