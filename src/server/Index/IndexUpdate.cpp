#include "server/Index/IndexUpdate.h"

#include "server/Index/IndexTables.h"
#include "server/Store/StoreFiles.h"
#include "support/OS/MonotonicClock.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace quillstead::IndexUpdate {

namespace {

using namespace std::chrono_literals;
using IndexTables::Row;

constexpr std::size_t filesPerStep = 1'000;

/// A file that changed this short a time ago may change again without a new time or size, so it is
/// noted as if it had another time, and read again by the next update.
constexpr std::chrono::nanoseconds settlingTime = 50ms;
constexpr std::chrono::nanoseconds settlingTimeWithCoarseClock = 2s;

struct Changes {
  std::vector<std::int64_t> gone;
  std::vector<const Survey::File*> fresh;
  Fingerprint unchanged;
};

std::string keyOf(Store::Kind store, std::string_view name) {
  return (store == Store::Kind::project ? "j/" : "p/") + std::string(name);
}

Changes changesBetween(const std::vector<Row>& rows, const Survey& survey) {
  std::unordered_map<std::string, const Row*> known;
  known.reserve(rows.size());
  Changes changes;
  for (const Row& row : rows) {
    if (!known.emplace(keyOf(row.store, row.name), &row).second) changes.gone.push_back(row.id);
  }
  for (const Survey::File& file : survey.files()) {
    const auto found = known.find(keyOf(file.store, file.name));
    if (found == known.end() || found->second->stamp != file.stamp) {
      changes.fresh.push_back(&file);
      continue;
    }
    changes.unchanged.add(file.store, file.name, file.stamp);
    known.erase(found);
  }
  for (const auto& [key, row] : known) changes.gone.push_back(row->id);
  return changes;
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

/// Reads one file and notes it. Absent when the database failed.
std::optional<Survey::File> note(const Survey& survey, const Survey::File& file,
                                 IndexTables::Writer& writer) {
  Survey::File noted = file;
  const auto read = StoreFiles::readCard(survey.cards(file.store), file.name);
  const auto* content = std::get_if<StoreFiles::FileText>(&read);
  noted.stamp = notedStamp(content ? content->stamp : file.stamp);
  if (!content) {
    if (!writer.add(noted, nullptr)) return std::nullopt;
    return noted;
  }
  const Card card = Card::parse(content->text, file.name);
  if (!writer.add(noted, &card)) return std::nullopt;
  return noted;
}

enum class Step { complete, partial, failed };

/// One step, within a transaction that holds the lock.
Step stepUnderLock(Database& database, Survey& survey) {
  if (!IndexTables::create(database)) return Step::failed;
  const auto rows = IndexTables::rows(database);
  if (!rows) return Step::failed;

  survey.repeat();  // others may have indexed newer files while this process waited for the lock
  Changes changes = changesBetween(*rows, survey);
  IndexTables::Writer writer(database);
  for (const std::int64_t id : changes.gone) {
    if (!writer.remove(id)) return Step::failed;
  }
  const bool complete = changes.fresh.size() <= filesPerStep;
  if (!complete) changes.fresh.resize(filesPerStep);
  for (const Survey::File* file : changes.fresh) {
    const auto noted = note(survey, *file, writer);
    if (!noted) return Step::failed;
    changes.unchanged.add(noted->store, noted->name, noted->stamp);
  }
  if (!IndexTables::setFingerprint(database, changes.unchanged.sum())) return Step::failed;
  return complete ? Step::complete : Step::partial;
}

Step step(Database& database, Survey& survey) {
  if (!database.run("BEGIN IMMEDIATE")) return Step::failed;
  const Step made = stepUnderLock(database, survey);
  if (made != Step::failed && database.run("COMMIT")) return made;
  database.rollBack();
  return Step::failed;
}

}  // namespace

bool run(Database& database, Survey& survey, std::chrono::milliseconds patience) {
  const auto fingerprint = IndexTables::fingerprint(database);
  if (fingerprint == survey.fingerprint()) return true;
  if (!fingerprint && database.trouble() == DatabaseTrouble::busy) return false;
  // A crash of the machine may cost the last steps but not the file; what was overwritten is not
  // wiped. Should this fail, so does what follows.
  database.run("PRAGMA synchronous = NORMAL; PRAGMA secure_delete = OFF");
  const auto start = OS::MonotonicClock::now();
  for (;;) {
    switch (step(database, survey)) {
      case Step::complete:
        return true;
      case Step::failed:
        return false;
      case Step::partial:
        break;
    }
    if (OS::MonotonicClock::now() - start >= patience) return true;
  }
}

}  // namespace quillstead::IndexUpdate
