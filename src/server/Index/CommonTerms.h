#pragma once

#include "server/Index/Database.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillstead::server {

/// The terms that were found to be in more than half of the cards of a large store. The index keeps
/// them until a card changes, so that not every prompt has to count them. A term is written as the
/// expression that searches for it.
class CommonTerms {
 public:
  CommonTerms() = default;

  /// `fingerprint`: of the files in the index. `text`: as `keep` wrote it.
  CommonTerms(std::int64_t fingerprint, std::string_view text)
      : fingerprint_(fingerprint), text_(text) {}

  [[nodiscard]] bool contain(std::string_view expression) const;

  void add(std::string_view expression);

  /// Writes the terms if any was added, and if the index has the same files as when they were read.
  /// Whether that succeeds does not matter, and it waits for no other server.
  void keep(Database& database) const;

 private:
  std::int64_t fingerprint_ = 0;
  std::string text_;  ///< each followed by the end of a line
  bool isNew_ = false;
};

}  // namespace quillstead::server
