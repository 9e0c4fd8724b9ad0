#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"
#include "server/Store/StoreFiles.h"
#include "support/OS/MonotonicClock.h"

#include <functional>
#include <string>

/// Updates an index from the files.
namespace quillstead::server::IndexUpdate {

/// Reads a card's file, as `StoreFiles::readCard` does.
using ReadCard = std::function<StoreFiles::TextOrReason(const OS::Descriptor& cards,
                                                        Store::Kind kind, const std::string& name)>;

enum class Outcome {
  current,  ///< the index was up to date
  written,  ///< changes were written; perhaps not all
  failed,   ///< the database could not be read, locked or written
};

/// Returns 0, 1, 2 and so on for each call on one index, across all servers.
using Turn = std::function<std::uint64_t()>;

/// Looks at the files and reads those that changed. It works in steps. Each step is one
/// transaction: what it did is kept if a later step fails, and other servers see all of it or
/// nothing. A transaction that the caller began goes on if no file had to be listed; else it ends.
///
/// It stops after the first file behind the deadline, and the next update goes on from there. So a
/// large or slow store is indexed over several calls, and none of them keeps its caller waiting.
/// Each update reads at least one of the changed files. The words of removed cards leave the file
/// at once, or, when the index is large, over the next updates.
///
/// A name that is new, gone or given to another file is seen at once. A change within a file is
/// seen at once, too, unless the store has more than `SeenFiles::fewFiles` files and the time of
/// its directory shows that all names are the same. Then each update looks at one part of the
/// files, in turn.
Outcome run(Database& database, Survey& survey, OS::MonotonicClock::time_point deadline,
            const Turn& turn, const ReadCard& read = &StoreFiles::readCard);

}  // namespace quillstead::server::IndexUpdate
