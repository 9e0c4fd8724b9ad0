#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Descriptor.h"
#include "support/OS/FileStamp.h"
#include "support/OS/MonotonicClock.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// A sum over the states of files that does not depend on their order. Two sets of files, or one
/// set at two times, have the same sum only when all names, sizes and times are the same, but for a
/// chance of one in 2^64.
class Fingerprint {
 public:
  void add(Store::Kind store, std::string_view name, OS::FileStamp stamp);

  [[nodiscard]] std::int64_t sum() const { return static_cast<std::int64_t>(sum_); }

 private:
  std::uint64_t sum_ = 0;
};

/// The card files of a scope as they were when they were last looked at.
class Survey {
 public:
  struct File {
    Store::Kind store;
    std::string name;
    std::optional<OS::FileStamp> stamp;  ///< absent when only names were looked for
  };

  enum class Depth { names, stamps };

  /// Opens the directories of the cards and looks at no file yet.
  static Survey opened(const Scope& scope);

  /// Lists all files, and with `Depth::stamps` also looks at the size and time of each, which takes
  /// most of the time; ends early when the deadline passes.
  void look(Depth depth, OS::MonotonicClock::time_point deadline);

  /// A number that changes with every name of a card that is added, removed, or given to another
  /// file; absent where that cannot be told without looking.
  [[nodiscard]] std::optional<std::uint64_t> namesStamp() const;

  /// What was seen is all there is. False before the first look and after an early end.
  [[nodiscard]] bool isComplete() const { return complete_; }

  [[nodiscard]] const std::vector<File>& files() const { return files_; }
  /// Of the files with a stamp.
  [[nodiscard]] const Fingerprint& fingerprint() const { return fingerprint_; }

  /// The roots of the stores that have a directory of cards.
  [[nodiscard]] const std::vector<std::string>& roots() const { return roots_; }

  /// The directory that holds the store's cards; not open when there is none.
  [[nodiscard]] const OS::Descriptor& cards(Store::Kind store) const;

  /// There was something that has the name of a card but may not be one as it is.
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
