#pragma once

#include "server/Store/Scope.h"
#include "support/OS/FileStamp.h"

#include <cstdint>
#include <string_view>

namespace quillstead {

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

}  // namespace quillstead
