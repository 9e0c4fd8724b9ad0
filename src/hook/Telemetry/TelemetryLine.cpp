#include "hook/Telemetry/TelemetryLine.h"

#include "support/OS/Descriptor.h"
#include "support/OS/HomeDirectory.h"

#include <array>
#include <ctime>

namespace quillstead::TelemetryLine {

std::string path(const OS::Environment& environment) {
  if (const auto log = environment.value("QUILLSTEAD_HOOK_LOG")) return std::string(*log);
  const auto home = environment.value("HOME");
  return (home ? std::string(*home) : OS::homeDirectory()) + "/Library/Logs/quillstead-hook.log";
}

std::string timestamp(std::chrono::system_clock::time_point now) {
  const auto second = std::chrono::floor<std::chrono::seconds>(now);
  const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(now - second).count();
  const std::time_t time = std::chrono::system_clock::to_time_t(second);
  std::tm utc{};
  gmtime_r(&time, &utc);

  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  const std::string thousandths = std::to_string(1000 + milliseconds);
  return std::string(text.data(), length) + "." + thousandths.substr(1) + "+00:00";
}

void append(std::string_view line, const std::string& path) {
  if (path.empty()) return;
  const OS::Descriptor log = OS::openForAppending(path.c_str());
  if (log.isOpen()) OS::writeAll(log.number(), line);
}

}  // namespace quillstead::TelemetryLine
