#include "server/Server.h"
#include "support/OS/Environment.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>
#include <thread>

namespace quillstead::server {

namespace {

struct Pipe {
  Pipe() { EXPECT_EQ(pipe(ends.data()), 0); }

  std::array<int, 2> ends{-1, -1};
};

/// What comes within a generous time.
std::string readFrom(int descriptor) {
  constexpr int patience = 20'000;  // milliseconds
  pollfd awaited{.fd = descriptor, .events = POLLIN, .revents = 0};
  if (poll(&awaited, 1, patience) != 1) return "nothing";
  std::array<char, 1'000> buffer{};
  const ssize_t count = read(descriptor, buffer.data(), buffer.size());
  return {buffer.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
}

void writeTo(int descriptor, std::string_view text) {
  EXPECT_EQ(write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

TEST(Server, AnswersEachRequestWhileItsInputStaysOpen) {
  const std::array<const char*, 1> none{nullptr};
  for (const bool blocking : {true, false}) {
    SCOPED_TRACE(blocking);
    const Pipe input;
    const Pipe output;
    if (!blocking) fcntl(input.ends[0], F_SETFL, O_NONBLOCK);
    int status = -1;
    std::thread server([&] {
      status = Server::run(input.ends[0], output.ends[1], OS::Environment(none.data()));
      close(output.ends[1]);
    });
    for (const std::string id : {"1", "2"}) {
      writeTo(input.ends[1], R"({"jsonrpc":"2.0","id":)" + id + R"(,"method":)");
      writeTo(input.ends[1], "\"ping\"}\n");
      EXPECT_EQ(readFrom(output.ends[0]), R"({"jsonrpc":"2.0","id":)" + id + ",\"result\":{}}\n");
    }
    close(input.ends[1]);
    EXPECT_EQ(readFrom(output.ends[0]), "");
    server.join();
    EXPECT_EQ(status, 0);
    close(input.ends[0]);
    close(output.ends[0]);
  }
}

}  // namespace

}  // namespace quillstead::server
