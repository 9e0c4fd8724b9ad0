#include "server/Server.h"
#include "support/OS/Environment.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

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

/// The lines of `text` when it comes in pieces of `size` bytes; "!" for one that is too long.
std::vector<std::string> linesOf(std::string_view text, std::size_t size, std::size_t longest) {
  LineBuffer buffer(longest);
  std::vector<std::string> lines;
  const auto keep = [&](const LineBuffer::Line& line) {
    const auto* kept = std::get_if<std::string>(&line);
    lines.push_back(kept ? *kept : "!");
  };
  while (!text.empty()) {
    buffer.add(text.substr(0, size));
    text.remove_prefix(std::min(size, text.size()));
    while (const auto line = buffer.take()) keep(*line);
  }
  if (const auto rest = buffer.takeRest()) keep(*rest);
  EXPECT_FALSE(buffer.takeRest());
  return lines;
}

TEST(LineBuffer, GivesTheSameLinesHoweverTheBytesCome) {
  const std::string_view text = "one\n\nthree\r\nlonger than eight\nfive\ntoolongatend";
  for (const std::size_t size : {1U, 2U, 3U, 7U, 16U, 100U}) {
    SCOPED_TRACE(size);
    EXPECT_THAT(linesOf(text, size, 8),
                ::testing::ElementsAre("one", "", "three\r", "!", "five", "!"));
  }
}

TEST(LineBuffer, KeepsALineOfExactlyTheLongestLength) {
  EXPECT_THAT(linesOf("12345678\n12345678", 5, 8), ::testing::ElementsAre("12345678", "12345678"));
}

TEST(LineBuffer, HasNothingLeftAfterALineFeed) {
  EXPECT_THAT(linesOf("a\n", 1, 8), ::testing::ElementsAre("a"));
  EXPECT_THAT(linesOf("", 1, 8), ::testing::IsEmpty());
}

TEST(LineBuffer, DoesNotKeepALineThatIsTooLong) {
  LineBuffer buffer(1'000);
  const std::string piece(1'000, 'x');
  for (int count = 0; count < 10'000; ++count) {
    buffer.add(piece);
    EXPECT_FALSE(buffer.take());
  }
  buffer.add("\nnext\n");
  EXPECT_TRUE(std::holds_alternative<LineBuffer::TooLong>(*buffer.take()));
  EXPECT_EQ(std::get<std::string>(*buffer.take()), "next");
}

}  // namespace

}  // namespace quillstead::server
