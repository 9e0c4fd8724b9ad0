#pragma once

#include "server/Index/Database.h"
#include "server/Index/Survey.h"
#include "server/Store/Card.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The tables of an index: a row for each file that was looked at, its words when it is a card, and
/// the fingerprint of all of them.
namespace quillstead::IndexTables {

/// A file as the index knows it.
struct Row {
  std::int64_t id;
  Store::Kind store;
  std::string name;
  OS::FileStamp stamp;
};

/// Makes the tables where they are missing.
bool create(Database& database);

/// The fingerprint that the last update left; absent when there is none or it cannot be read.
std::optional<std::int64_t> fingerprint(Database& database);
bool setFingerprint(Database& database, std::int64_t fingerprint);

/// Absent when they could not be read.
std::optional<std::vector<Row>> rows(Database& database);

/// Writes rows; made once for many of them.
class Writer {
 public:
  explicit Writer(Database& database);

  bool remove(std::int64_t id);

  /// `card`: null for a file that is no card, so that it is known and not read again.
  bool add(const Survey::File& file, const Card* card);

 private:
  Statement removeFile_;
  Statement removeCard_;
  Statement addFile_;
  Statement addCard_;
};

}  // namespace quillstead::IndexTables
