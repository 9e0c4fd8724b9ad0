#include "server/Index/IndexUpdate.h"

#include "server/Index/IndexTables.h"
#include "server/Index/SeenFiles.h"
#include "support/Text/Hash.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <unordered_map>
#include <vector>

namespace quillstead::server::IndexUpdate {

namespace {

using namespace std::chrono_literals;
using Clock = OS::MonotonicClock;
using IndexTables::Row;

/// A step ends with the first file behind one of these: so little is lost when a server is killed,
/// and so long others wait for it.
constexpr std::chrono::milliseconds longestStep = 100ms;
constexpr std::size_t largestStep = 4'194'304;  // bytes of files

/// A file that changed this short a time ago may change again without a new time or size, so it is
/// noted as if it had another time, and read again by the next update.
constexpr std::chrono::nanoseconds settlingTime = 50ms;
constexpr std::chrono::nanoseconds settlingTimeWithCoarseClock = 2s;

/// After so many changes at once the words lie in many parts, each of which a search would look
/// into.
constexpr std::size_t manyChanges = 100;

/// With less than this, a look at a large store may end early each time.
constexpr std::chrono::milliseconds patienceForAll = 200ms;

/// The content of a file that is no card.
constexpr std::uint64_t noContent = 0;

/// One file whose row is not as the file is.
struct Change {
  std::optional<std::int64_t> row;  ///< absent when it has none
  const Survey::File* file;         ///< null when it is gone
};

/// What is to be done, given what the index held at one moment.
struct Plan {
  std::vector<Change> changes;
  std::size_t done = 0;  ///< how many of the changes are made
  Fingerprint known;     ///< of the rows that are as their files
};

/// Tells files apart, but for a chance of one in 2^64.
std::uint64_t keyOf(Store::Kind store, std::string_view name) {
  return Text::mixed(Text::hashOf(name) + static_cast<std::uint64_t>(store) + 1);
}

Plan planFor(const std::vector<Row>& rows, const Survey& survey) {
  std::unordered_map<std::uint64_t, const Row*> unseen;
  unseen.reserve(rows.size());
  Plan plan;
  for (const Row& row : rows) {
    const bool single = unseen.emplace(keyOf(row.store, row.name), &row).second;
    if (!single) plan.changes.push_back({.row = row.id, .file = nullptr});
  }
  for (const Survey::File& file : survey.files()) {
    const auto found = unseen.find(keyOf(file.store, file.name));
    if (found == unseen.end()) {
      plan.changes.push_back({.row = std::nullopt, .file = &file});
      continue;
    }
    const OS::FileStamp noted = found->second->stamp;
    if (noted == file.stamp.value_or(noted)) {
      plan.known.add(file.store, file.name, noted);
    } else {
      plan.changes.push_back({.row = found->second->id, .file = &file});
    }
    unseen.erase(found);
  }
  for (const auto& [key, row] : unseen) {
    if (survey.isComplete()) {
      plan.changes.push_back({.row = row->id, .file = nullptr});
    } else {
      plan.known.add(row->store, row->name, row->stamp);
    }
  }
  return plan;
}

OS::FileStamp notedStamp(OS::FileStamp stamp) {
  constexpr std::int64_t second = 1'000'000'000;
  const std::chrono::nanoseconds modified(stamp.modified);
  const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
  const bool coarse = stamp.modified % second == 0;
  const std::chrono::nanoseconds settling = coarse ? settlingTimeWithCoarseClock : settlingTime;
  const std::chrono::nanoseconds age = now - modified;
  const bool settled = age >= settling || age < -settling;  // or it is dated into the future
  if (!settled) --stamp.modified;
  return stamp;
}

/// One update. It holds what is carried from step to step.
class Update {
 public:
  Update(Database& database, Survey& survey, Clock::time_point deadline, const ReadCard& read)
      : database_(database),
        survey_(survey),
        patience_(std::max(deadline - Clock::now(), Clock::duration::zero())),
        deadline_(deadline),
        read_(read) {}

  Outcome run(const Turn& turn) {
    state_ = IndexTables::state(database_);
    if (!state_ && database_.error() == DatabaseError::busy) return Outcome::failed;
    if (isPartCurrent(turn)) return state_->needsMerging ? mergeOnly() : Outcome::current;
    look();
    // What a short look did not come to is left to a call that has the time for all of it.
    const bool isCut = !survey_.isComplete() && state_ && !state_->isUnfinished;
    if (isCut && patience_ < patienceForAll) return Outcome::current;
    // On a starved machine looking may take all the time, and yet each update has to get on.
    deadline_ = std::max(deadline_, Clock::now() + patience_ / 2);
    const bool isCurrent = survey_.isComplete() && state_ && !state_->isUnfinished &&
                           state_->fingerprint == survey_.fingerprint().sum();
    if (isCurrent && nextState(survey_.fingerprint(), true) == state_) return Outcome::current;
    if (isCurrent) plan_ = Plan{.changes = {}, .done = 0, .known = survey_.fingerprint()};
    prepareToWrite();
    do {
      if (!step()) return isCurrent ? Outcome::current : Outcome::failed;
    } while (!isDone() && Clock::now() < deadline_);
    return Outcome::written;
  }

 private:
  /// True when no file of the part whose turn it is has changed, where that is all there is to
  /// know.
  bool isPartCurrent(const Turn& turn) {
    if (!state_ || state_->isUnfinished || !state_->namesStamp) return false;
    if (state_->namesStamp != survey_.namesStamp()) return false;
    const auto parts = static_cast<std::uint64_t>(std::max<std::int64_t>(state_->seenParts, 1));
    const std::uint64_t part = parts > 1 ? turn() % parts : 0;
    return SeenFiles::areUnchanged(database_, static_cast<std::int64_t>(part), survey_);
  }

  void prepareToWrite() {
    // A crash of the machine may cost the index, which is rebuilt then. What is removed leaves the
    // file. Others are locked out only while a step is committed, not as soon as the cache is full.
    // Should this fail, so does what follows.
    database_.run("PRAGMA synchronous = OFF; PRAGMA secure_delete = ON; PRAGMA cache_spill = OFF");
  }

  /// Merges words while nothing else is to be done, until the deadline.
  Outcome mergeOnly() {
    prepareToWrite();
    do {
      if (!mergeStep()) {
        database_.rollBack();
        return Outcome::current;  // what it holds is right, and another update will go on
      }
    } while (state_->needsMerging && Clock::now() < deadline_);
    return Outcome::written;
  }

  bool mergeStep() {
    if (!database_.run("BEGIN IMMEDIATE") || IndexTables::state(database_) != state_) return false;
    return merge(std::min(deadline_, Clock::now() + longestStep)) &&
           IndexTables::setState(database_, *state_, survey_.roots()) && database_.run("COMMIT");
  }

  /// While the index is not finished, new files are found by their names, and the rest can wait.
  void look() {
    const bool namesDo = !state_ || state_->isUnfinished;
    namesStamp_ = survey_.namesStamp();
    if (namesDo) {
      // Ending early, it would see the same names each time, and never the new ones behind them.
      survey_.look(Survey::Depth::names, Clock::time_point::max());
    } else {
      survey_.look(Survey::Depth::stamps, deadline_);
    }
  }

  /// The state when rows with the fingerprint `known` are as their files.
  [[nodiscard]] IndexTables::State nextState(const Fingerprint& known, bool allChangesMade) const {
    IndexTables::State next = *state_;
    next.fingerprint = known.sum();
    next.isUnfinished = !allChangesMade || !survey_.isComplete();
    // A file that may have changed again since it was read is noted with another stamp than it has.
    const bool isSettled = !next.isUnfinished && next.fingerprint == survey_.fingerprint().sum();
    next.namesStamp.reset();
    // A skipped file may become a card without a change of its name.
    if (isSettled && !survey_.passedOver()) next.namesStamp = namesStamp_;
    next.seenParts = next.namesStamp ? SeenFiles::partsFor(survey_.files().size()) : 0;
    return next;
  }

  [[nodiscard]] bool isDone() const {
    return plan_->done == plan_->changes.size() && !state_->needsMerging;
  }

  bool step() {
    if (database_.run("BEGIN IMMEDIATE") && stepUnderLock() && database_.run("COMMIT")) return true;
    database_.rollBack();
    return false;
  }

  /// Where there is no state yet. The rows may be there all the same.
  bool beginState() {
    const auto cards = IndexTables::countedCards(database_);
    if (cards) state_ = IndexTables::State{.namesStamp = {}, .cards = *cards};
    return cards.has_value();
  }

  bool stepUnderLock() {
    const auto found = IndexTables::state(database_);
    // With a state there are tables, or somebody took them away: empty ones would hide that.
    if (!found && !IndexTables::create(database_)) return false;
    const bool isOthers = found != state_;  // they may have indexed newer files than were seen
    state_ = found;
    if (!plan_ || isOthers) {
      if (isOthers) look();
      const auto rows = IndexTables::rows(database_);
      if (!rows) return false;
      plan_ = planFor(*rows, survey_);
    }
    if (!state_ && !beginState()) return false;
    const Clock::time_point end = std::min(deadline_, Clock::now() + longestStep);
    // Removed words can be merged away only once their removal is committed.
    const bool stepMade = plan_->done < plan_->changes.size() ? makeChanges(end) : merge(end);
    if (!stepMade) return false;
    state_ = nextState(plan_->known, plan_->done == plan_->changes.size());
    const bool kept = state_->namesStamp ? SeenFiles::keep(database_, survey_.files())
                                         : SeenFiles::forget(database_);
    return kept && IndexTables::setState(database_, *state_, survey_.roots());
  }

  /// Brings the words together in one part, without those of what was removed, until the step is
  /// long enough.
  bool merge(Clock::time_point end) {
    while (state_->needsMerging) {
      const auto isWhole = IndexTables::mergeSome(database_);
      if (!isWhole) return false;
      state_->needsMerging = !*isWhole;
      if (Clock::now() >= end) break;
    }
    return true;
  }

  /// Makes changes until the step is long enough; one at least.
  bool makeChanges(Clock::time_point end) {
    IndexTables::Writer writer(database_, state_->cards);
    if (plan_->changes.size() >= manyChanges) state_->needsMerging = true;
    bytesRead_ = 0;
    while (plan_->done < plan_->changes.size()) {
      const Change& change = plan_->changes[plan_->done++];
      if (!make(change, writer)) return false;
      if (bytesRead_ >= largestStep || Clock::now() >= end) break;
    }
    return true;
  }

  bool make(const Change& change, IndexTables::Writer& writer) {
    if (!change.file) return remove(*change.row, writer);
    Survey::File noted = *change.file;
    const OS::Descriptor& cards = survey_.cards(noted.store);
    const auto read = read_(cards, noted.store, noted.name);
    const auto* file = std::get_if<StoreFiles::FileText>(&read);
    if (!noted.stamp && !file)
      noted.stamp = StoreFiles::cardStamp(cards, noted.store, noted.name.c_str());
    if (!noted.stamp && !file) return true;  // it is no file, or gone again
    noted.stamp = notedStamp(file ? file->stamp : *noted.stamp);
    const std::uint64_t content = file ? Text::hashOf(file->text) : noContent;
    plan_->known.add(noted.store, noted.name, *noted.stamp);
    if (file) bytesRead_ += file->text.size();
    if (change.row) {
      if (writer.touch(*change.row, *noted.stamp, content)) return true;
      if (!remove(*change.row, writer)) return false;
    }
    if (!file) return writer.add(noted, nullptr, content);
    const Card card = Card::parse(file->text, noted.name);
    return writer.add(noted, &card, content);
  }

  bool remove(std::int64_t row, IndexTables::Writer& writer) {
    state_->needsMerging = true;
    return writer.remove(row);
  }

  Database& database_;
  Survey& survey_;
  const Clock::duration patience_;
  Clock::time_point deadline_;
  const ReadCard& read_;
  std::optional<IndexTables::State> state_;  ///< of the index when last looked at
  std::optional<std::uint64_t> namesStamp_;  ///< taken before the last look
  std::optional<Plan> plan_;
  std::size_t bytesRead_ = 0;  ///< in this step
};

}  // namespace

Outcome run(Database& database, Survey& survey, OS::MonotonicClock::time_point deadline,
            const Turn& turn, const ReadCard& read) {
  return Update(database, survey, deadline, read).run(turn);
}

}  // namespace quillstead::server::IndexUpdate
