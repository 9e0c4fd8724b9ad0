#include "server/LineBuffer.h"

#include <algorithm>
#include <utility>

namespace quillstead::server {

std::optional<LineBuffer::Line> LineBuffer::take() {
  const std::size_t end = bytes_.find('\n', std::max(start_, searched_));
  if (end != std::string::npos) {
    Line line = finished(end);
    start_ = end + 1;
    searched_ = start_;
    return line;
  }
  bytes_.erase(0, start_);
  start_ = 0;
  if (bytes_.size() > longestLine_) {
    overlong_ = true;
    bytes_.clear();
  }
  searched_ = bytes_.size();
  return std::nullopt;
}

std::optional<LineBuffer::Line> LineBuffer::takeRest() {
  if (start_ == bytes_.size() && !overlong_) return std::nullopt;
  Line line = finished(bytes_.size());
  start_ = bytes_.size();
  return line;
}

LineBuffer::Line LineBuffer::finished(std::size_t end) {
  const bool tooLong = std::exchange(overlong_, false) || end - start_ > longestLine_;
  if (tooLong) return TooLong{};
  return bytes_.substr(start_, end - start_);
}

}  // namespace quillstead::server
