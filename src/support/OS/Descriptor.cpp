#include "support/OS/Descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

namespace quillstead::OS {

namespace {

template <typename Call>
Transfer transfer(Call call) {
  ssize_t count = 0;
  do {
    count = call();
  } while (count < 0 && errno == EINTR);

  if (count > 0) return {Transfer::Result::moved, static_cast<std::size_t>(count)};
  if (count == 0) return {Transfer::Result::ended, 0};
  const bool notReady = errno == EAGAIN || errno == EWOULDBLOCK;
  return {notReady ? Transfer::Result::notReady : Transfer::Result::failed, 0};
}

void waitForRoom(int descriptor) {
  pollfd room{.fd = descriptor, .events = POLLOUT, .revents = 0};
  poll(&room, 1, -1);
}

/// macOS refuses to read or write more than this at once.
constexpr std::size_t mostAtOnce = INT_MAX;

/// `number`, or a copy above the standard streams' numbers when it is one of those.
Descriptor aboveStandardStreams(int number) {
  Descriptor descriptor(number);
  if (number > STDERR_FILENO || number < 0) return descriptor;
  return Descriptor(fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

}  // namespace

void Descriptor::close() {
  // Not tried again after an interruption: the number may already be in use again.
  if (isOpen()) ::close(std::exchange(number_, none));
}

Transfer read(int descriptor, char* buffer, std::size_t capacity) {
  return transfer([&] { return ::read(descriptor, buffer, std::min(capacity, mostAtOnce)); });
}

Transfer write(int descriptor, std::string_view bytes) {
  return transfer(
      [&] { return ::write(descriptor, bytes.data(), std::min(bytes.size(), mostAtOnce)); });
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const Transfer written = write(descriptor, bytes);
    switch (written.result) {
      case Transfer::Result::moved:
        bytes.remove_prefix(written.count);
        break;
      case Transfer::Result::notReady:
        waitForRoom(descriptor);
        break;
      case Transfer::Result::ended:
      case Transfer::Result::failed:
        return false;
    }
  }
  return true;
}

void writeNow(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const Transfer written = write(descriptor, bytes);
    if (written.result != Transfer::Result::moved) return;
    bytes.remove_prefix(written.count);
  }
}

void writeIfRoom(int descriptor, std::string_view bytes) {
  pollfd room{.fd = descriptor, .events = POLLOUT, .revents = 0};
  while (!bytes.empty() && poll(&room, 1, 0) > 0) {
    // A pipe that polls as writable has room for this much.
    const Transfer written = write(descriptor, bytes.substr(0, PIPE_BUF));
    if (written.result != Transfer::Result::moved) return;
    bytes.remove_prefix(written.count);
  }
}

bool writeLine(int descriptor, std::string_view text) {
  if (text.size() >= mostAtOnce) return writeAll(descriptor, text) && writeAll(descriptor, "\n");
  while (!text.empty()) {
    const std::array<iovec, 2> pieces{iovec{const_cast<char*>(text.data()), text.size()},
                                      iovec{const_cast<char*>("\n"), 1}};
    const Transfer written = transfer(
        [&] { return writev(descriptor, pieces.data(), static_cast<int>(pieces.size())); });
    switch (written.result) {
      case Transfer::Result::moved:
        if (written.count > text.size()) return true;
        text.remove_prefix(written.count);
        break;
      case Transfer::Result::notReady:
        waitForRoom(descriptor);
        break;
      case Transfer::Result::ended:
      case Transfer::Result::failed:
        return false;
    }
  }
  return writeAll(descriptor, "\n");
}

std::optional<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return std::nullopt;
  Pipe made{aboveStandardStreams(ends[0]), aboveStandardStreams(ends[1])};
  if (!made.reading.isOpen() || !made.writing.isOpen()) return std::nullopt;
  for (const int end : {made.reading.number(), made.writing.number()}) {
    if (fcntl(end, F_SETFD, FD_CLOEXEC) != 0) return std::nullopt;
  }
  return made;
}

Descriptor openForAppending(const char* path) {
  constexpr mode_t mode = 0644;
  int number = -1;
  do {
    number = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, mode);
  } while (number < 0 && errno == EINTR);
  return aboveStandardStreams(number);
}

bool makeNonBlocking(const Descriptor& descriptor) {
  return fcntl(descriptor.number(), F_SETFL, O_NONBLOCK) == 0;
}

}  // namespace quillstead::OS
