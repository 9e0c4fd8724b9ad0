#pragma once

#include "server/Index/Fingerprint.h"
#include "server/Store/Scope.h"
#include "support/OS/Descriptor.h"
#include "support/OS/FileStamp.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillstead {

/// The card files of a scope as they are now.
class Survey {
 public:
  struct File {
    Store::Kind store;
    std::string name;
    OS::FileStamp stamp;
  };

  /// Looks at every file's name, size and time.
  explicit Survey(const Scope& scope);

  /// Looks again.
  void repeat();

  [[nodiscard]] const std::vector<File>& files() const { return files_; }
  [[nodiscard]] std::int64_t fingerprint() const { return fingerprint_.sum(); }

  /// The directory that holds the store's cards; not open when there is none.
  [[nodiscard]] const OS::Descriptor& cards(Store::Kind store) const;

 private:
  void visit(Store::Kind store);

  std::array<OS::Descriptor, 2> cards_;
  std::vector<File> files_;
  Fingerprint fingerprint_;
};

}  // namespace quillstead
