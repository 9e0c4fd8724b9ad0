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

/// Looks at the files and reads what changed, in steps that are each kept, whatever becomes of the
/// next, and each whole for whoever else uses the index. It ends with the first file behind the
/// deadline, and the next update goes on from there: so a large store, or a slow one, is indexed
/// over several calls, none of which keeps its caller waiting. At least one file is read when any
/// changed. Texts that are gone leave the database's file at once, or over the next updates when
/// the index is a large one.
///
/// Names that are new, gone or given to another file are seen at once. So is a change within a
/// file, but in a store of more than `SeenFiles::fewFiles` whose directory tells of all names:
/// there each update looks at a part of the files, in turn.
Outcome run(Database& database, Survey& survey, OS::MonotonicClock::time_point deadline,
            const Turn& turn, const ReadCard& read = &StoreFiles::readCard);

}  // namespace quillstead::server::IndexUpdate
