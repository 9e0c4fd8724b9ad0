#pragma once

#include "server/Index/Database.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillstead::server {

/// The terms that are in more than half of the cards of a large store. The index keeps them until a
/// card changes, so that not every prompt has to count them. A term is stored as the expression
/// that searches for it.
class CommonTerms {
 public:
  CommonTerms() = default;

  /// `fingerprint`: of the files in the index. `text`: as `keep` wrote it.
  CommonTerms(std::int64_t fingerprint, std::string_view text)
      : fingerprint_(fingerprint), text_(text) {}

  [[nodiscard]] bool contain(std::string_view expression) const;

  void add(std::string_view expression);

  /// Writes the terms if any was added and the index still has the same files as when they were
  /// read. It does not wait for other servers. A failure does no harm: the terms are counted again.
  void keep(Database& database) const;

 private:
  std::int64_t fingerprint_ = 0;
  std::string text_;  ///< one term a line
  bool isNew_ = false;
};

}  // namespace quillstead::server
