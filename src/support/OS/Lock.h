#pragma once

#include "support/OS/Descriptor.h"

namespace quillstead::OS {

/// Keeps other processes that lock the same directory waiting for its lifetime. Where the file
/// system has no such locks, as some that are shared between machines, it does nothing.
class Lock {
 public:
  explicit Lock(const Descriptor& directory);
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock();

 private:
  int directory_;
};

}  // namespace quillstead::OS
