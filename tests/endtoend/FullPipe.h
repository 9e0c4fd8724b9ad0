#pragma once

#include "support/OS/Descriptor.h"

#include <string>

namespace quillstead {

/// A named pipe that has a reader but no room, so that who writes to it waits.
class FullPipe {
 public:
  explicit FullPipe(const std::string& path);

  /// Takes out what is in it, and so makes room.
  [[nodiscard]] std::string drain() const;

 private:
  OS::Descriptor reading_;
  OS::Descriptor writing_;
};

}  // namespace quillstead
