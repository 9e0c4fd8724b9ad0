#include "cli/HookTrial.h"

#include "cli/Telemetry/LogLine.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/OS/Descriptor.h"
#include "support/Text/Text.h"

#include <fcntl.h>

#include <array>
#include <utility>

namespace quillstead::cli {

namespace {

/// A pipe whose writing end a child finds under a path.
class LogPipe {
 public:
  LogPipe() : pipe_(OS::makePipe()) {
    if (pipe_) fcntl(pipe_->writing.number(), F_SETFD, 0);  // for the child to keep
  }

  /// The child's log.
  [[nodiscard]] std::string path() const {
    return pipe_ ? "/dev/fd/" + std::to_string(pipe_->writing.number()) : std::string();
  }

  /// The first line that was written; call it when the child has ended.
  std::string line() {
    if (!pipe_) return {};
    pipe_->writing.close();
    OS::makeNonBlocking(pipe_->reading);
    std::array<char, 65'536> buffer{};
    const OS::Transfer part = OS::read(pipe_->reading.number(), buffer.data(), buffer.size());
    if (part.result != OS::Transfer::Result::moved) return {};
    const std::string_view all(buffer.data(), part.count);
    return std::string(all.substr(0, all.find('\n')));
  }

 private:
  std::optional<OS::Pipe> pipe_;
};

}  // namespace

HookTrial HookTrial::run(const hook::HarnessAdapter& harness, std::vector<std::string> command,
                         std::string payload, const std::string& directory,
                         std::vector<std::string> environment) {
  constexpr std::chrono::seconds limit(5);  // as harnesses are set up
  LogPipe log;
  environment.push_back("QUILLSTEAD_HOOK_LOG=" + log.path());
  HookTrial trial{.end = ChildRun::run({.command = std::move(command),
                                        .environment = std::move(environment),
                                        .directory = directory,
                                        .input = std::move(payload),
                                        .limit = limit}),
                  .context = std::nullopt,
                  .isReadable = false,
                  .trail = {},
                  .milliseconds = 0};
  const std::string answer(Text::trimmed(trial.end.output));
  trial.context = contextIn(answer);
  const bool isSilence = answer == harness.silence().value_or("");
  trial.isReadable = trial.end.isSuccess() && (isSilence || trial.context);

  LogLine line;
  const std::string written = log.line();
  if (line.read(written)) {
    trial.trail.assign(line.fields.begin(), line.fields.end());
    trial.milliseconds = line.milliseconds;
  }
  return trial;
}

std::string HookTrial::payload(const std::string& prompt, const std::string& directory) {
  JSON::Array roots;
  roots.emplace_back(directory);
  return JSON::write(JSON::objectOf({{"hook_event_name", "UserPromptSubmit"},
                                     {"prompt", prompt},
                                     {"cwd", directory},
                                     {"workspace_roots", std::move(roots)}}),
                     JSON::Slashes::plain);
}

std::optional<std::string> HookTrial::contextIn(std::string_view answer) {
  const auto document = JSON::read(answer);
  if (!document) return std::nullopt;
  const JSON::ObjectView members = document->object();
  const auto specific = members.find("hookSpecificOutput").object().value_or(JSON::ObjectView());
  for (const JSON::View value : {specific.find("additionalContext"),
                                 members.find("additional_context"), members.find("context")}) {
    if (const auto text = value.string()) return std::string(*text);
  }
  return std::nullopt;
}

}  // namespace quillstead::cli
