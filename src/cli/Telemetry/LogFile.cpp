#include "cli/Telemetry/LogFile.h"

#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/HookSettings.h"
#include "hook/Telemetry/TelemetryLine.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <vector>

namespace quillstead::cli::LogFile {

OS::Descriptor open(const std::string& path) {
  OS::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status {};
  if (!file.isOpen() || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    file.close();
  }
  return file;
}

void Lines::add(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    if (end == std::string_view::npos) return keep(bytes);
    const std::string_view part = bytes.substr(0, end);
    bytes.remove_prefix(end + 1);
    if (begun_.empty() && part.size() <= longestLine) {
      visit_(part, true);
      continue;
    }
    keep(part);
    visit_(begun_, !isTooLong_);
    begun_.clear();
    isTooLong_ = false;
  }
}

void Lines::keep(std::string_view part) {
  const std::size_t room = longestLine - begun_.size();
  isTooLong_ = isTooLong_ || part.size() > room;
  begun_ += part.substr(0, room);
}

void Lines::finish() {
  if (!begun_.empty()) visit_(begun_, false);
  begun_.clear();
  isTooLong_ = false;
}

bool forEachLine(const OS::Descriptor& file, Lines& lines) {
  constexpr std::size_t atOnce = 1'048'576;  // bytes
  std::vector<char> buffer(atOnce);
  for (;;) {
    const OS::Transfer part = OS::read(file.number(), buffer.data(), buffer.size());
    if (part.result == OS::Transfer::Result::ended) return true;
    if (part.result != OS::Transfer::Result::moved) return false;
    lines.add({buffer.data(), part.count});
  }
}

}  // namespace quillstead::cli::LogFile

namespace quillstead::cli {

namespace {

/// The hook takes HOME as it is, with a slash at its end if it has one.
std::string withSingleSlashes(std::string path) {
  const auto areSlashes = [](char one, char next) { return one == '/' && next == '/'; };
  path.erase(std::unique(path.begin(), path.end(), areSlashes), path.end());
  return path;
}

}  // namespace

LogPlace LogPlace::find(const Context& context, const std::optional<std::string>& named) {
  LogPlace place;
  const std::string ofHook = hook::TelemetryLine::path(context.environment);
  if (context.environment.value("QUILLSTEAD_HOOK_LOG")) {
    place.isOff = ofHook.empty();
    if (!place.isOff) place.candidates.push_back(ofHook);
    return place;
  }
  for (const std::string& path :
       {named.value_or(""), context.places.log, withSingleSlashes(ofHook)}) {
    auto& known = place.candidates;
    const bool isNew = std::find(known.begin(), known.end(), path) == known.end();
    if (isNew && !path.empty()) known.push_back(path);
  }
  return place;
}

std::optional<std::string> LogPlace::named(const Places& places) {
  const auto settings = ConfigFile::textOf(places.claudeDirectory + "/settings.json");
  return settings ? HookSettings::logNamedIn(*settings) : std::nullopt;
}

}  // namespace quillstead::cli
