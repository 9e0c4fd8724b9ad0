#include "server/Index/Fingerprint.h"

#include <algorithm>
#include <cstring>

namespace quillstead {

namespace {

/// Spreads every bit of `value` over all of the result (the finaliser of SplitMix64).
std::uint64_t mixed(std::uint64_t value) {
  value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31U);
}

std::uint64_t hashOf(std::string_view bytes) {
  std::uint64_t hash = bytes.size();
  while (!bytes.empty()) {
    std::uint64_t word = 0;
    const std::size_t count = std::min(bytes.size(), sizeof word);
    std::memcpy(&word, bytes.data(), count);
    hash = mixed(hash + word) + 0x9E3779B97F4A7C15U;
    bytes.remove_prefix(count);
  }
  return hash;
}

}  // namespace

void Fingerprint::add(Store::Kind store, std::string_view name, OS::FileStamp stamp) {
  std::uint64_t hash = hashOf(name) + static_cast<std::uint64_t>(store) + 1;
  hash = mixed(hash) + static_cast<std::uint64_t>(stamp.size);
  hash = mixed(hash) + static_cast<std::uint64_t>(stamp.modified);
  sum_ += mixed(hash);
}

}  // namespace quillstead
