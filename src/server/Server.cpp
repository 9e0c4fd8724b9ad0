#include "server/Server.h"

#include "server/Protocol.h"
#include "support/OS/Descriptor.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <utility>

namespace quillstead::server::Server {

namespace {

constexpr std::size_t longestLine = 16'777'216;  // bytes

/// Responses are buffered up to this size before they are written.
constexpr std::size_t responsesAtOnce = 65'536;  // bytes

class Session {
 public:
  Session(int output, const OS::Environment& environment)
      : output_(output), environment_(environment) {}

  /// False when the responses cannot be written.
  bool take(const LineBuffer::Line& line) {
    bool isResponse = false;
    const auto write = [&](std::string_view part) {
      isResponse = true;
      return add(part);
    };
    const auto* const text = std::get_if<std::string>(&line);
    const bool written = text ? Protocol::respond(*text, environment_, write)
                              : write(Protocol::responseToTooLongLine());
    return written && (!isResponse || add("\n"));
  }

  bool flush() {
    const bool written = OS::writeAll(output_, responses_);
    responses_.clear();
    return written;
  }

 private:
  bool add(std::string_view part) {
    responses_ += part;
    return responses_.size() < responsesAtOnce || flush();
  }

  int output_;
  const OS::Environment& environment_;
  std::string responses_;
};

void waitForInput(int input) {
  pollfd awaited{.fd = input, .events = POLLIN, .revents = 0};
  poll(&awaited, 1, -1);
}

}  // namespace

int run(int input, int output, const OS::Environment& environment) {
  Session session(output, environment);
  LineBuffer lines(longestLine);
  static std::array<char, 65'536> buffer;  // on a probed stack it would be 16 page faults
  for (;;) {
    const OS::Transfer part = OS::read(input, buffer.data(), buffer.size());
    if (part.result == OS::Transfer::Result::notReady) {
      waitForInput(input);
      continue;
    }
    if (part.result == OS::Transfer::Result::failed) return EXIT_FAILURE;
    lines.add({buffer.data(), part.count});
    while (const auto line = lines.take()) {
      if (!session.take(*line)) return EXIT_FAILURE;
    }
    const bool ended = part.result == OS::Transfer::Result::ended;
    if (const auto rest = ended ? lines.takeRest() : std::nullopt; rest && !session.take(*rest)) {
      return EXIT_FAILURE;
    }
    if (!session.flush()) return EXIT_FAILURE;
    if (ended) return EXIT_SUCCESS;
  }
}

}  // namespace quillstead::server::Server

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
