#include "server/Session/SessionMemory.h"

#include "server/Session/Transcript.h"
#include "support/Text/Hash.h"
#include "support/Text/Text.h"

#include <algorithm>

namespace quillstead::server {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds onePrompt = 5s;
constexpr std::chrono::milliseconds rulesLast = 1h;
constexpr std::uint64_t rulesLastPrompts = 20;
constexpr std::uint64_t cardsLastPrompts = 30;
constexpr std::size_t mostCards = 300;  ///< of a state, which keeps it small

/// The bytes for a prompt's cards when the size of its rules is unknown.
constexpr std::size_t leastRoom = 0;

std::int64_t inMilliseconds(SessionMemory::Clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

/// True when `time` lies at most `span` before `now`, and not after it.
bool isWithin(std::int64_t time, std::int64_t now, std::chrono::milliseconds span) {
  return time <= now && now - time < span.count();
}

/// The identity of a session. One that continues in another transcript, such as a sub-agent's, is
/// another session: it has not seen what this one has.
std::string nameOf(const SessionMemory::Caller& caller) {
  std::string name = *caller.sessionID;
  name += '\0';
  return name += caller.transcriptPath.value_or("");
}

/// The state that applies to a call made now.
SessionState movedOn(const std::optional<SessionState>& known, const SessionMemory::Caller& caller,
                     std::int64_t now) {
  SessionState state = known.value_or(SessionState());
  if (caller.transcriptPath) {
    const Transcript::Change change =
        known ? Transcript::changeSince(*caller.transcriptPath, state.transcriptRead)
              : Transcript::Change{.read = Transcript::length(*caller.transcriptPath),
                                   .newContext = false};
    if (change.newContext) state = {};
    state.transcriptRead = change.read;
  }
  if (state.prompt == 0 || !isWithin(state.promptBegan, now, onePrompt)) {
    ++state.prompt;
    state.promptBegan = now;
    state.room = leastRoom;
  }
  return state;
}

std::vector<SessionState::Card>::const_iterator find(const SessionState& state,
                                                     std::string_view place) {
  const std::uint64_t wanted = Text::hashOf(place);
  return std::find_if(state.cards.begin(), state.cards.end(),
                      [wanted](const SessionState::Card& card) { return card.place == wanted; });
}

}  // namespace

std::optional<SessionMemory> SessionMemory::of(const Caller& caller,
                                               const OS::Environment& environment,
                                               Clock::time_point now) {
  if (!caller.sessionID || Text::isBlank(*caller.sessionID)) return std::nullopt;
  if (environment.value("QUILLSTEAD_REPEAT") == "always") return std::nullopt;
  std::optional<SessionFile> file = SessionFile::opened(nameOf(caller), environment);
  if (!file) return std::nullopt;
  SessionState state = movedOn(file->read(), caller, inMilliseconds(now));
  return SessionMemory(std::move(*file), std::move(state), now);
}

bool SessionMemory::knowsRules(std::string_view rules) const {
  if (state_.rulesPrompt == 0 || state_.rules != Text::hashOf(rules)) return false;
  if (state_.rulesPrompt == state_.prompt) return false;   // another hook of the same prompt
  if (state_.pointerPrompt == state_.prompt) return true;  // likewise
  return state_.prompt - state_.rulesPrompt < rulesLastPrompts &&
         isWithin(state_.rulesTime, inMilliseconds(now_), rulesLast);
}

void SessionMemory::rulesShown(std::string_view rules, std::size_t room) {
  state_.rules = Text::hashOf(rules);
  state_.rulesPrompt = state_.prompt;
  state_.rulesTime = inMilliseconds(now_);
  state_.room = room;
}

void SessionMemory::pointerShown(std::size_t room) {
  state_.pointerPrompt = state_.prompt;
  state_.room = room;
}

bool SessionMemory::knowsCard(std::string_view place, std::string_view text) const {
  const auto card = find(state_, place);
  return card != state_.cards.end() && card->fingerprint == Text::hashOf(text) &&
         card->prompt != state_.prompt && state_.prompt - card->prompt < cardsLastPrompts;
}

bool SessionMemory::knowsPlace(std::string_view place) const {
  return find(state_, place) != state_.cards.end();
}

void SessionMemory::cardShown(std::string_view place, std::string_view text) {
  const auto known = find(state_, place);
  if (known != state_.cards.end()) state_.cards.erase(known);
  if (state_.cards.size() >= mostCards) state_.cards.erase(state_.cards.begin());
  state_.cards.push_back(
      {.place = Text::hashOf(place), .fingerprint = Text::hashOf(text), .prompt = state_.prompt});
}

std::size_t SessionMemory::room() const { return state_.room; }

void SessionMemory::keep() { file_.write(state_); }

}  // namespace quillstead::server
