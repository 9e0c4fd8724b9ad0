#include "server/Index/IndexUpdate.h"

#include "server/Index/IndexTables.h"
#include "server/Index/SeenFiles.h"
#include "server/Index/Survey.h"
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

/// A step ends after the first file beyond one of these limits. They bound what is lost when a
/// server is killed, and how long other servers wait.
constexpr std::chrono::milliseconds longestStep = 100ms;
constexpr std::size_t largestStep = 4'194'304;  // bytes of files

/// A file that changed this recently may change again without a new time or size. So it is recorded
/// with another time than it has, and the next update reads it again.
constexpr std::chrono::nanoseconds settlingTime = 50ms;
constexpr std::chrono::nanoseconds settlingTimeWithCoarseClock = 2s;

/// After this many changes at once the full-text index has many parts, and a search would have to
/// look into each.
constexpr std::size_t manyChanges = 100;

/// With less time than this, each look at a large store might end early.
constexpr std::chrono::milliseconds patienceForAll = 200ms;

/// The content of a file that is no card.
constexpr std::uint64_t noContent = 0;

/// One file whose row is out of date.
struct Change {
  std::optional<std::int64_t> row;  ///< absent when it has none
  const Survey::File* file;         ///< null when it is gone
};

/// What there is to do, by what the index held at one moment.
struct Plan {
  std::vector<Change> changes;
  std::size_t done = 0;  ///< how many of the changes are made
  Fingerprint known;     ///< of the rows that are up to date
};

/// Differs between files, except for a chance of one in 2^64.
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
  const bool settled = age >= settling || age < -settling;  // or its time is in the future
  if (!settled) --stamp.modified;
  return stamp;
}

/// One update, with what its steps share.
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
    const bool isCurrentByPart = isPartCurrent(turn);
    if (isCurrentByPart && !state_->needsMerging) return Outcome::current;
    database_.rollBack();  // a look at all files may take long, and others may want to write
    if (isCurrentByPart) return mergeOnly();
    look();
    // A short call leaves an incomplete look to a call that has time for all files.
    const bool isCut = !survey_.isComplete() && state_ && !state_->isUnfinished;
    if (isCut && patience_ < patienceForAll) return Outcome::current;
    // On a busy machine the look may take all the time, but each update must make progress.
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
  /// True when all names are known to be the same, and no file changed in the part whose turn it
  /// is.
  bool isPartCurrent(const Turn& turn) {
    if (!state_ || state_->isUnfinished || !state_->namesStamp) return false;
    if (state_->namesStamp != survey_.namesStamp()) return false;
    const auto parts = static_cast<std::uint64_t>(std::max<std::int64_t>(state_->seenParts, 1));
    const std::uint64_t part = parts > 1 ? turn() % parts : 0;
    return SeenFiles::areUnchanged(database_, static_cast<std::int64_t>(part), survey_);
  }

  void prepareToWrite() {
    // synchronous: a crash of the machine may damage the index, which is then built again.
    // secure_delete: removed text is overwritten. cache_spill: others are locked out only while a
    // step is committed, not as soon as the cache is full. If this fails, the next statement does.
    database_.run("PRAGMA synchronous = OFF; PRAGMA secure_delete = ON; PRAGMA cache_spill = OFF");
  }

  /// Merges until the deadline, when there is nothing else to do.
  Outcome mergeOnly() {
    prepareToWrite();
    do {
      if (!mergeStep()) {
        database_.rollBack();
        return Outcome::current;  // the rows are up to date, and a later update will go on
      }
    } while (state_->needsMerging && Clock::now() < deadline_);
    return Outcome::written;
  }

  bool mergeStep() {
    if (!database_.run("BEGIN IMMEDIATE") || IndexTables::state(database_) != state_) return false;
    return merge(std::min(deadline_, Clock::now() + longestStep)) &&
           IndexTables::setState(database_, *state_, survey_.roots()) && database_.run("COMMIT");
  }

  /// While the index is unfinished, names are enough to find new files. Changed files can wait.
  void look() {
    const bool namesDo = !state_ || state_->isUnfinished;
    namesStamp_ = survey_.namesStamp();
    if (namesDo) {
      // A look that ends early would see the same names each time, and never those behind them.
      survey_.look(Survey::Depth::names, Clock::time_point::max());
    } else {
      survey_.look(Survey::Depth::stamps, deadline_);
    }
  }

  /// The state when the rows with the fingerprint `known` are up to date.
  [[nodiscard]] IndexTables::State nextState(const Fingerprint& known, bool allChangesMade) const {
    IndexTables::State next = *state_;
    next.fingerprint = known.sum();
    next.isUnfinished = !allChangesMade || !survey_.isComplete();
    // A file that changed recently is recorded with another time than it has, and will be read
    // again.
    const bool isSettled = !next.isUnfinished && next.fingerprint == survey_.fingerprint().sum();
    next.namesStamp.reset();
    // A skipped file may become a card and keep its name.
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

  /// For an index without a state. It may have rows all the same.
  bool beginState() {
    const auto cards = IndexTables::countedCards(database_);
    if (cards) state_ = IndexTables::State{.namesStamp = {}, .cards = *cards};
    return cards.has_value();
  }

  bool stepUnderLock() {
    const auto found = IndexTables::state(database_);
    // With a state, the tables exist or somebody removed them. Empty new ones would hide that.
    if (!found && !IndexTables::create(database_)) return false;
    const bool isOthers = found != state_;  // another server may have indexed newer files
    state_ = found;
    if (!plan_ || isOthers) {
      if (isOthers) look();
      const auto rows = IndexTables::rows(database_);
      if (!rows) return false;
      plan_ = planFor(*rows, survey_);
      areTitlesOrdered_ = false;
    }
    if (!state_ && !beginState()) return false;
    const Clock::time_point end = std::min(deadline_, Clock::now() + longestStep);
    // A merge drops removed words only after their removal is committed.
    const bool stepMade = plan_->done < plan_->changes.size() ? makeChanges(end) : merge(end);
    if (!stepMade) return false;
    state_ = nextState(plan_->known, plan_->done == plan_->changes.size());
    const bool kept = state_->namesStamp ? SeenFiles::keep(database_, survey_.files())
                                         : SeenFiles::forget(database_);
    return kept && IndexTables::setState(database_, *state_, survey_.roots());
  }

  /// Merges until the end of the step.
  bool merge(Clock::time_point end) {
    if (!areTitlesOrdered_ && !IndexTables::orderTitles(database_)) return false;
    areTitlesOrdered_ = true;
    while (state_->needsMerging) {
      const auto isWhole = IndexTables::mergeSome(database_);
      if (!isWhole) return false;
      state_->needsMerging = !*isWhole;
      if (*isWhole) return IndexTables::setMerging(database_, IndexTables::Merging::asItGrows);
      if (Clock::now() >= end) break;
    }
    return true;
  }

  /// Makes changes until the end of the step, at least one.
  bool makeChanges(Clock::time_point end) {
    IndexTables::Writer writer(database_, state_->cards);
    if (plan_->changes.size() >= manyChanges) {
      state_->needsMerging = true;
      const bool isFirst = plan_->done == 0;
      if (isFirst && !IndexTables::setMerging(database_, IndexTables::Merging::atTheEnd)) {
        return false;
      }
    }
    bytesRead_ = 0;
    while (plan_->done < plan_->changes.size()) {
      const Change& change = plan_->changes[plan_->done++];
      if (!make(change, writer)) return false;
      if (bytesRead_ >= largestStep || Clock::now() >= end) break;
    }
    const bool isLast = plan_->done == plan_->changes.size() && !state_->needsMerging;
    return !isLast || IndexTables::orderTitles(database_);
  }

  bool make(const Change& change, IndexTables::Writer& writer) {
    if (!change.file) return remove(*change.row, writer);
    Survey::File noted = *change.file;
    const OS::Descriptor& cards = survey_.cards(noted.store);
    const auto read = read_(cards, noted.store, noted.name);
    const auto* file = std::get_if<StoreFiles::FileText>(&read);
    if (!noted.stamp && !file)
      noted.stamp = StoreFiles::cardStamp(cards, noted.store, noted.name.c_str());
    if (!noted.stamp && !file) return true;  // it is no regular file, or no longer exists
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
  bool areTitlesOrdered_ = false;  ///< since the plan was made
  std::size_t bytesRead_ = 0;      ///< in this step
};

}  // namespace

Outcome run(Database& database, Survey& survey, OS::MonotonicClock::time_point deadline,
            const Turn& turn, const ReadCard& read) {
  return Update(database, survey, deadline, read).run(turn);
}

}  // namespace quillstead::server::IndexUpdate
