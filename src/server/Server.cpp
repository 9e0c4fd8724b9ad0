#include "server/Server.h"

#include "server/LineBuffer.h"
#include "server/Protocol/Protocol.h"
#include "support/OS/Descriptor.h"

#include <poll.h>

#include <array>
#include <cstdlib>
#include <string>

namespace quillstead::Server {

namespace {

constexpr std::size_t longestLine = 16'777'216;  // bytes

/// Answers are gathered up to this size before they are written.
constexpr std::size_t answersAtOnce = 65'536;  // bytes

class Session {
 public:
  Session(int output, const OS::Environment& environment)
      : output_(output), environment_(environment) {}

  /// False when the answers cannot be written.
  bool take(const LineBuffer::Line& line) {
    const auto* const text = std::get_if<std::string>(&line);
    const auto answer = text ? Protocol::answer(*text, environment_)
                             : std::optional(Protocol::answerToTooLongLine());
    if (answer) answers_.append(*answer).append("\n");
    return answers_.size() < answersAtOnce || flush();
  }

  bool flush() {
    const bool written = OS::writeAll(output_, answers_);
    answers_.clear();
    return written;
  }

 private:
  int output_;
  const OS::Environment& environment_;
  std::string answers_;
};

void waitForInput(int input) {
  pollfd awaited{.fd = input, .events = POLLIN, .revents = 0};
  poll(&awaited, 1, -1);
}

}  // namespace

int run(int input, int output, const OS::Environment& environment) {
  Session session(output, environment);
  LineBuffer lines(longestLine);
  std::array<char, 65'536> buffer;
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

}  // namespace quillstead::Server
