#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Descriptor.h"
#include "support/OS/File.h"
#include "support/OS/MonotonicClock.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// A hash over the states of files that does not depend on their order. It is the same only if all
/// names, sizes and times are the same, except for a chance of one in 2^64.
class Fingerprint {
 public:
  void add(Store::Kind store, std::string_view name, OS::FileStamp stamp);

  [[nodiscard]] std::int64_t sum() const { return static_cast<std::int64_t>(sum_); }

 private:
  std::uint64_t sum_ = 0;
};

/// The card files of a scope, as they were when last checked.
class Survey {
 public:
  struct File {
    Store::Kind store;
    std::string name;
    std::optional<OS::FileStamp> stamp;  ///< absent when only names were read
  };

  enum class Depth { names, stamps };

  /// Opens the directories of the cards, but checks no file yet.
  static Survey opened(const Scope& scope);

  /// Lists all files. With `Depth::stamps` it also reads the size and time of each, which takes
  /// most of the time. Stops early at the deadline.
  void look(Depth depth, OS::MonotonicClock::time_point deadline);

  /// A number that changes when a card's name is added, removed, or given to another file. Absent
  /// where the file system does not show that.
  [[nodiscard]] std::optional<std::uint64_t> namesStamp() const;

  /// True when all files were seen. False before the first check and after an early stop.
  [[nodiscard]] bool isComplete() const { return complete_; }

  [[nodiscard]] const std::vector<File>& files() const { return files_; }
  /// Over the files with a stamp.
  [[nodiscard]] const Fingerprint& fingerprint() const { return fingerprint_; }

  /// The roots of the stores that have a directory of cards.
  [[nodiscard]] const std::vector<std::string>& roots() const { return roots_; }

  /// The directory that holds the store's cards; not open when there is none.
  [[nodiscard]] const OS::Descriptor& cards(Store::Kind store) const;

  /// True when something was skipped that has a card's name but is not a usable file.
  [[nodiscard]] bool passedOver() const { return passedOver_; }

 private:
  void visit(Store::Kind store, Depth depth, OS::MonotonicClock::time_point deadline);

  std::array<OS::Descriptor, 2> cards_;
  std::vector<std::string> roots_;
  std::vector<File> files_;
  Fingerprint fingerprint_;
  bool complete_ = false;
  bool passedOver_ = false;
};

}  // namespace quillstead::server
