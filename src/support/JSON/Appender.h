#pragma once

#include "support/OS/LargeMemory.h"
#include "support/Text/Blocks.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace quillstead::JSON {

/// Appends to a string through a small buffer, so that many short pieces need few calls of the
/// library.
class Appender {
 public:
  explicit Appender(std::string& text) : text_(text) {}

  Appender& operator+=(char byte) {
    if (used_ == buffer_.size()) flush();
    buffer_[used_++] = byte;
    return *this;
  }

  /// Both bytes, for less than a call for each.
  void appendPair(char first, char second) {
    if (buffer_.size() - used_ < 2) flush();
    buffer_[used_] = first;
    buffer_[used_ + 1] = second;
    used_ += 2;
  }

  Appender& operator+=(std::string_view bytes) {
    if (bytes.size() > buffer_.size() - used_) flush();
    if (bytes.size() > buffer_.size()) {
      text_.append(bytes);
    } else {
      bytes.copy(buffer_.data() + used_, bytes.size());
      used_ += bytes.size();
    }
    return *this;
  }

  /// Appends the bytes at the start of `source` before the first one that is found, and gives their
  /// number; see `Text::Blocks::bytesBefore`, and `longText` for `isLong`.
  template <bool isLong = false, typename Test>
  std::size_t appendBefore(std::string_view source, Test found) {
    std::size_t before = 0;
    for (;;) {
      if (wholeBlocksLeft() == 0) flush();
      const std::string_view part = source.substr(before, wholeBlocksLeft());
      char* const to = buffer_.data() + used_;
      const std::size_t count = isLong ? Text::Blocks::copyLongBefore(part, to, found)
                                       : Text::Blocks::copyBefore(part, to, found);
      used_ += count;
      before += count;
      if (count < part.size() || before == source.size()) return before;
    }
  }

  /// Flushes the buffer. The string is complete only after this.
  void end() { flush(); }

 private:
  [[nodiscard]] std::size_t wholeBlocksLeft() const {
    constexpr std::size_t block = sizeof(Text::Blocks::Block);
    return (buffer_.size() - used_) / block * block;
  }

  void flush() {
    OS::makeRoom(text_, used_);
    text_.append(buffer_.data(), used_);
    used_ = 0;
  }

  std::string& text_;
  std::size_t used_ = 0;
  std::array<char, 4096> buffer_;
};

}  // namespace quillstead::JSON
