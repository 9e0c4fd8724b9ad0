#include "hook/MCP/MCPClient.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Replies.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <limits>

namespace quillstead::hook {
namespace {

using unit::ample;
using unit::child;
using unit::described;

constexpr std::string_view tool = "rules_get";

std::string called(const MCPClient& client, Seconds leash = ample) {
  return described(client.call(tool, {}, leash));
}

/// What the client makes of a server's output, and what it says on standard error meanwhile.
struct Heard {
  std::string reply;
  std::string standardError;
};

Heard heard(std::string_view output, std::string_view error = {}, int status = 0) {
  const unit::Server server;
  server.print(tool, output);
  server.complain(tool, error);
  server.exitWith(tool, status);
  const unit::Captured captured(STDERR_FILENO);
  std::string reply = called(server.client());
  return {.reply = std::move(reply), .standardError = captured.text()};
}

constexpr std::string_view goodResponse =
    R"({"jsonrpc":"2.0","id":2,"result":{"content":[{"type":"text","text":"A"}]}})";

TEST(MCPClient, SendsTheHandshakeAndTheToolCallInTwoLinesAndNothingElse) {
  for (const char* name : {"claude-code", "codex", "cursor", "opencode"}) {
    const unit::Server server;
    const auto reply = server.client(name).call(
        "memory_get_relevant", JSON::objectOf({{"prompt", "a/b\n\xE2\x82\xAC"}, {"cwd", "/p"}}),
        ample);
    EXPECT_EQ(reply.miss, "no-envelope");
    const std::string sent = server.request("memory_get_relevant");
    ASSERT_EQ(std::count(sent.begin(), sent.end(), '\n'), 2);
    ASSERT_EQ(sent.back(), '\n');
    const std::size_t end = sent.find('\n');
    EXPECT_TRUE(
        unit::areEquivalent(unit::parsed(sent.substr(0, end)),
                            unit::parsed(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{
                     "protocolVersion":"2024-11-05","capabilities":{},"clientInfo":{"name":")" +
                                         std::string(name) + R"(","version":"1"}}})")))
        << sent;
    EXPECT_TRUE(
        unit::areEquivalent(unit::parsed(sent.substr(end + 1)),
                            unit::parsed(R"({"jsonrpc":"2.0","id":2,"method":"tools/call","params":{
                     "name":"memory_get_relevant","arguments":{"prompt":"a/b\n\u20ac","cwd":"/p"}}})")))
        << sent;
  }
}

TEST(MCPClient, PassesArgumentsOnUnchanged) {
  unit::ValueGenerator generator(33);
  for (int i = 0; i < 20; ++i) {
    const unit::Server server;
    const JSON::Object arguments = generator.object(3);
    static_cast<void>(server.client().call(tool, arguments, ample));
    EXPECT_TRUE(unit::areEquivalent(server.arguments(tool), arguments));
  }
}

TEST(MCPClient, SendsWhatIsNotUTF8AsReplacementCharacters) {
  const unit::Server server;
  static_cast<void>(server.client().call(tool, JSON::objectOf({{"cwd", "a\xFF"}}), ample));
  EXPECT_TRUE(JSON::isText(server.arguments(tool).find("cwd"), "a\xEF\xBF\xBD"));
}

TEST(MCPClient, StartsNothingWithoutALeashAboveZero) {
  for (const double leash :
       {0.0, -0.0, -1.0, std::nan(""), -std::numeric_limits<double>::infinity()}) {
    const unit::Server server;
    server.print(tool, goodResponse);
    EXPECT_EQ(called(server.client(), Seconds(leash)), "- {} timeout");
    EXPECT_FALSE(server.wasCalled(tool));
  }
}

TEST(MCPClient, TimesOutWithoutDecliningAndForwardsStandardError) {
  const unit::Captured captured(STDERR_FILENO);
  EXPECT_EQ(called({.executable = child("WritesThenSleeps"), .clientName = "codex"}, Seconds(1.5)),
            "- {} timeout");
  EXPECT_EQ(captured.text(),
            "quillstead-hook: the rules_get lane's MCP child said:\nwhat went wrong\n");
}

TEST(MCPClient, DeclinesSilentlyWhenTheServerCannotBeStarted) {
  const unit::Captured captured(STDERR_FILENO);
  for (const std::string& executable : {std::string("/nothing/here"), std::string(), child("")}) {
    EXPECT_EQ(called({.executable = executable, .clientName = "codex"}),
              "- {} no-envelope declines");
  }
  EXPECT_EQ(captured.text(), "");
}

TEST(MCPClient, DeclinesWhenTheServerFailsWhateverItPrinted) {
  const Heard result = heard(goodResponse, "line one\nline two\n", 3);
  EXPECT_EQ(result.reply, "- {} no-envelope declines");
  EXPECT_EQ(result.standardError,
            "quillstead-hook: the rules_get lane's MCP child said (exit 3):\nline one\nline two\n");
}

TEST(MCPClient, SaysNothingOfAServerThatFailsSilently) {
  const Heard result = heard(goodResponse, " \n\n", 1);
  EXPECT_EQ(result.reply, "- {} no-envelope declines");
  EXPECT_EQ(result.standardError, "");
}

TEST(MCPClient, DeclinesWhenASignalEndsTheServer) {
  const unit::ScopedVariable signal("QUILLSTEAD_TEST_SIGNAL", std::to_string(SIGKILL));
  const unit::Captured captured(STDERR_FILENO);
  EXPECT_EQ(called({.executable = child("DiesBySignal"), .clientName = "codex"}),
            "- {} no-envelope declines");
  EXPECT_EQ(captured.text(),
            "quillstead-hook: the rules_get lane's MCP child said (exit -9):\nabout to die\n");
}

TEST(MCPClient, KeepsAServersStandardErrorToItselfAfterACleanExit) {
  const Heard result = heard(goodResponse, "chatter\n");
  EXPECT_EQ(result.reply, "[A] {} -");
  EXPECT_EQ(result.standardError, "");
}

TEST(MCPClient, BringsALongTextBackWhole) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) text += "line " + std::to_string(i) + "\n\xE2\x82\xAC/\"";
  const unit::Server server;
  server.answer(tool, text, "{}");
  EXPECT_EQ(server.client().call(tool, {}, ample).text, text);
}

}  // namespace
}  // namespace quillstead::hook
