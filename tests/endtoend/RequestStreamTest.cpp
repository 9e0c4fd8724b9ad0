#include "HookTest.h"

#include <algorithm>
#include <string>
#include <vector>

namespace quillstead {
namespace {

const Said everything{.prompt = "a \"prompt\"\nof / two lines, ü 🙂",
                      .directory = "/no/such \"place\"",
                      .session = " s/1 ",
                      .transcript = "/t\\1.jsonl"};

class RequestStream : public HookTest {
 protected:
  /// Runs the hook and gives the server's calls of this run.
  [[nodiscard]] std::vector<ServerCall> callsOf(const Harness& harness, const std::string& slot,
                                                const Said& said, bool card) const {
    HookStart start = starting(harness, slot);
    start.environment["QUILLSTEAD_RULES_CARD"] = card ? "1" : "0";
    const std::size_t before = server.calls().size();
    EXPECT_EQ(runHook(start, harness.payload(said)).status, 0);
    const auto& calls = server.calls();
    return {calls.begin() + static_cast<std::ptrdiff_t>(before), calls.end()};
  }

  static void expectStream(const ServerCall& call, const std::string& clientName,
                           std::string_view tool, const std::string& arguments) {
    ASSERT_EQ(std::count(call.input.begin(), call.input.end(), '\n'), 2) << call.input;
    ASSERT_TRUE(call.input.ends_with('\n'));
    const auto lines = piecesOf(call.input, '\n');
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0],
                isJSON(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{)"
                       R"("protocolVersion":"2024-11-05","capabilities":{},"clientInfo":{"name":)" +
                       jsonString(clientName) + R"(,"version":"1"}}})"));
    EXPECT_THAT(lines[1],
                isJSON(R"({"jsonrpc":"2.0","id":2,"method":"tools/call","params":{"name":)" +
                       jsonString(tool) + R"(,"arguments":)" + arguments + "}}"));
    for (const std::string& line : lines) {
      EXPECT_TRUE(isCompact(line, JSON::Slashes::escaped)) << line;
    }
  }
};

TEST_F(RequestStream, IsTwoRequestsWithTheArgumentsThatThePayloadHas) {
  std::vector<Said> payloads{everything, Said{}};
  payloads.push_back({.prompt = "p", .directory = "/d"});
  payloads.push_back({.prompt = "p", .session = "s"});
  payloads.push_back({.prompt = "p", .transcript = "/t"});
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) {
      for (const bool card : {true, false}) {
        for (const Said& said : payloads) {
          SCOPED_TRACE(harness.name + " " + slot + (card ? " card " : " ") + harness.payload(said));
          const auto calls = callsOf(harness, slot, said, card);
          const bool wantsMemory = slot.empty() || slot == "recall";
          ASSERT_EQ(calls.size(), wantsMemory ? 2U : 1U);
          expectStream(calls[0], harness.name, rulesTool, harness.rulesArguments(said, card));
          if (wantsMemory) {
            expectStream(calls[1], harness.name, memoryTool, harness.memoryArguments(said));
          }
        }
      }
    }
  }
}

TEST_F(RequestStream, AsksForACardUnlessTheFlagSaysOtherwise) {
  const std::vector<std::pair<std::string, bool>> table{
      {"1", true},    {"true", true},     {"yes", true},      {"on", true},
      {"TRUE", true}, {"  Yes  ", true},  {"\tOn\r\n", true}, {"\u00a01\u2003", true},
      {"0", false},   {"off", false},     {"no", false},      {"", false},
      {" ", false},   {"false", false},   {"2", false},       {"11", false},
      {"y", false},   {"enabled", false}, {"1 1", false},     {"\"1\"", false},
  };
  for (const Harness& harness : harnesses()) {
    for (const auto& [value, card] : table) {
      HookStart start = starting(harness, "rules");
      start.environment["QUILLSTEAD_RULES_CARD"] = value;
      runHook(start, "{}");
      EXPECT_THAT(server.calls().back().toolArguments(), isJSON(harness.rulesArguments({}, card)))
          << harness.name << " " << value;
    }
    run(harness, "rules", "{}");
    EXPECT_THAT(server.calls().back().toolArguments(), isJSON(harness.rulesArguments({}, true)))
        << harness.name << " unset";
  }
}

TEST_F(RequestStream, IsFollowedByTheEndOfTheInput) {
  // The server reads its input to the end before it answers, so that an answer shows the end.
  server.answer(rulesTool, rulesBlock("R"), rulesMeta);
  const HookEnd end = run(harness("codex"), "rules", "{}");
  EXPECT_THAT(end.output, isAnswer(harness("codex").envelope(rulesBlock("R"))));
}

}  // namespace
}  // namespace quillstead
