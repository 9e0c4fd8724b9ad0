#include "server/Session/SessionState.h"

#include "server/UserPlaces.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/OS/MonotonicClock.h"
#include "support/Text/Hash.h"
#include "support/Text/Text.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <initializer_list>
#include <string>
#include <vector>

namespace quillstead::server {

namespace {

constexpr std::string_view header = "quillstead-session 1";
constexpr std::string_view footer = "end";

/// Takes "name number number …" apart; false when the line is anything else.
template <typename... Numbers>
bool readLine(std::string_view line, std::string_view name, Numbers&... numbers) {
  if (!line.starts_with(name)) return false;
  line.remove_prefix(name.size());
  const auto readNumber = [&line](auto& number) {
    if (!line.starts_with(' ')) return false;
    line.remove_prefix(1);
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc()) return false;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    return true;
  };
  return (readNumber(numbers) && ...) && line.empty();
}

template <typename... Numbers>
void writeLine(std::string& text, std::string_view name, Numbers... numbers) {
  text += name;
  ((text += ' ', text += std::to_string(numbers)), ...);
  text += '\n';
}

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds longestWait = 200ms;
constexpr std::chrono::hours lifetime = 24h * 7;
constexpr std::string_view suffix = ".session";
constexpr std::size_t largest = 262'144;  // bytes

/// True when the lock was taken in time.
bool locked(const OS::Descriptor& file) {
  const auto start = OS::MonotonicClock::now();
  for (;;) {
    if (flock(file.number(), LOCK_EX | LOCK_NB) == 0) return true;
    if (errno != EWOULDBLOCK && errno != EINTR) return false;
    if (OS::MonotonicClock::now() - start >= longestWait) return false;
    poll(nullptr, 0, 1);
  }
}

void removeOld(const OS::Descriptor& directory) {
  const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
  std::vector<std::string> old;
  OS::forEachName(directory, suffix, [&](const char* name) {
    const auto stamp = OS::stampOf(directory, name);
    if (stamp && now - std::chrono::nanoseconds(stamp->modified) > lifetime) old.emplace_back(name);
  });
  for (const std::string& name : old) unlinkat(directory.number(), name.c_str(), 0);
}

bool isPlainFileOfOurs(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

}  // namespace

std::optional<SessionState> SessionState::parse(std::string_view text) {
  SessionState state;
  const auto next = [&text] { return text.empty() ? std::string_view() : Text::takeLine(text); };
  const bool sound = next() == header &&
                     readLine(next(), "prompt", state.prompt, state.promptBegan) &&
                     readLine(next(), "rules", state.rules, state.rulesPrompt, state.rulesTime) &&
                     readLine(next(), "pointer", state.pointerPrompt, state.room) &&
                     readLine(next(), "transcript", state.transcriptRead);
  if (!sound) return std::nullopt;
  while (!text.empty()) {
    const std::string_view line = Text::takeLine(text);
    if (line == footer) return text.empty() ? std::optional(std::move(state)) : std::nullopt;
    Card card{};
    if (!readLine(line, "card", card.place, card.fingerprint, card.prompt)) return std::nullopt;
    state.cards.push_back(card);
  }
  return std::nullopt;
}

std::string SessionState::written() const {
  std::string text(header);
  text += '\n';
  writeLine(text, "prompt", prompt, promptBegan);
  writeLine(text, "rules", rules, rulesPrompt, rulesTime);
  writeLine(text, "pointer", pointerPrompt, room);
  writeLine(text, "transcript", transcriptRead);
  for (const Card& card : cards) {
    writeLine(text, "card", card.place, card.fingerprint, card.prompt);
  }
  return text.append(footer).append("\n");
}

std::optional<SessionFile> SessionFile::opened(std::string_view session,
                                               const OS::Environment& environment) {
  const std::string path = UserPlaces::makeCacheDirectory(environment);
  if (path.empty()) return std::nullopt;
  const OS::Descriptor directory = OS::openDirectory(path, OS::Links::followed);
  if (!directory.isOpen()) return std::nullopt;
  const std::string name = Text::inHexadecimal(Text::hashOf(session)) + std::string(suffix);
  OS::Descriptor file(openat(directory.number(), name.c_str(),
                             O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                             OS::FileMode::privateFile));
  struct stat status {};
  if (!file.isOpen() || fstat(file.number(), &status) != 0 || !isPlainFileOfOurs(status) ||
      !locked(file)) {
    return std::nullopt;
  }
  if (status.st_size == 0) removeOld(directory);
  return SessionFile(std::move(file));
}

std::optional<SessionState> SessionFile::read() const {
  struct stat status {};
  if (fstat(file_.number(), &status) != 0) return std::nullopt;
  std::string text(std::min(static_cast<std::size_t>(status.st_size), largest), '\0');
  std::size_t count = 0;
  while (count < text.size()) {
    const OS::Transfer part = OS::read(file_.number(), text.data() + count, text.size() - count);
    if (part.result != OS::Transfer::Result::moved) break;
    count += part.count;
  }
  return SessionState::parse(std::string_view(text).substr(0, count));
}

void SessionFile::write(const SessionState& state) const {
  const std::string text = state.written();
  if (lseek(file_.number(), 0, SEEK_SET) != 0 || !OS::writeAll(file_.number(), text)) return;
  // A state ends with its last line, so one that is followed by the rest of a longer one counts as
  // damaged. The file is not emptied first: ext4 would then write it to the disk when it is closed,
  // which takes a third of a call.
  [[maybe_unused]] const int cut = ftruncate(file_.number(), static_cast<off_t>(text.size()));
}

}  // namespace quillstead::server
