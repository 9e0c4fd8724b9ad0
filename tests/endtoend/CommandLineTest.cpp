#include "HookTest.h"

#include <string>
#include <vector>

namespace quillstead {
namespace {

using Arguments = std::vector<std::string>;

constexpr std::string_view refusalAnswer = "{\"continue\":true}\n";
const std::string knownHarnesses = "Known harnesses: claude-code, codex, cursor, opencode.\n";
const std::string knownSlots = "Known slots: rules, index, recall, pretool.\n";

class CommandLine : public HookTest {
 protected:
  /// Runs the hook with these arguments and a payload that would be served.
  [[nodiscard]] HookEnd started(const Arguments& arguments) const {
    SCOPED_TRACE(::testing::PrintToString(arguments));
    HookEnd end = runHook(starting(arguments), R"({"prompt":"x"})");
    EXPECT_EQ(end.status, 0);
    return end;
  }

  void expectRefusal(const Arguments& arguments, const std::string& message) const {
    SCOPED_TRACE(::testing::PrintToString(arguments));
    const HookEnd end = started(arguments);
    EXPECT_EQ(end.output, refusalAnswer);
    EXPECT_EQ(end.error, "quillstead-hook: " + message);
    EXPECT_TRUE(server.calls().empty());
    EXPECT_TRUE(logLines().empty());
  }

  /// The name of the harness that these arguments choose, as the server hears it.
  [[nodiscard]] std::string chosenHarness(const Arguments& arguments) const {
    const std::size_t callsBefore = server.calls().size();
    EXPECT_EQ(started(arguments).error, "");
    const auto& calls = server.calls();
    if (calls.size() == callsBefore) return "";
    const auto requests = calls.back().requests();
    const JSON::Object* const parameters =
        JSON::objectOf(requests.front().object()->find("params"));
    const JSON::Object* const client = JSON::objectOf(parameters->find("clientInfo"));
    return *JSON::textOf(client->find("name"));
  }

  /// The slot that these arguments choose, as the log tells it.
  [[nodiscard]] std::string chosenSlot(const Arguments& arguments) const {
    forgetLog();
    EXPECT_EQ(started(arguments).error, "");
    const std::string trail = onlyRecord().trail;
    return trail.starts_with("slot=") ? trail.substr(5, trail.find(' ') - 5) : "";
  }
};

TEST_F(CommandLine, WithoutAHarnessIsRefused) {
  const std::vector<Arguments> table{
      {},
      {"--harness"},
      {"--harness="},
      {"--harness", ""},
      {"--harness", "", "--harness", "codex"},
      {"--harness=", "--harness", "codex"},
      {"--slot", "rules"},
      {"--slot", "Recall"},
      {"--harnessx", "codex"},
      {"--harnesscodex"},
      {"-harness=codex"},
      {"--HARNESS", "codex"},
      {"harness", "codex"},
      {"codex"},
  };
  for (const Arguments& arguments : table) {
    expectRefusal(arguments, "no --harness <name> given — injecting nothing. " + knownHarnesses);
  }
}

TEST_F(CommandLine, TellsTheVersionWhenThatIsAllItSays) {
  const HookEnd end = started({"--version"});
  EXPECT_EQ(end.output, "quillstead-hook " QUILLSTEAD_VERSION "\n");
  EXPECT_EQ(end.error, "");
  expectRefusal({"--version", "x"},
                "no --harness <name> given — injecting nothing. " + knownHarnesses);
  EXPECT_EQ(chosenHarness({"--version", "--harness", "codex"}), "codex");
}

TEST_F(CommandLine, PrintsHelpWhenThatIsAllItSays) {
  const HookEnd end = started({"--help"});
  EXPECT_NE(end.output.find("claude-code, codex, cursor, opencode\n"), std::string::npos);
  EXPECT_NE(end.output.find("rules, index, recall, pretool\n"), std::string::npos);
  EXPECT_EQ(end.error, "");
  expectRefusal({"--help", "x"},
                "no --harness <name> given — injecting nothing. " + knownHarnesses);
  EXPECT_EQ(chosenHarness({"--help", "--harness", "codex"}), "codex");
}

TEST_F(CommandLine, WithAnUnknownHarnessIsRefusedByItsName) {
  const std::vector<std::pair<Arguments, std::string>> table{
      {{"--harness", "CODEX"}, "CODEX"},
      {{"--harness=Cursor"}, "Cursor"},
      {{"--harness", " cursor"}, " cursor"},
      {{"--harness", "cursor "}, "cursor "},
      {{"--harness", "claude"}, "claude"},
      {{"--harness", "claude-codex"}, "claude-codex"},
      {{"--harness==codex"}, "=codex"},
      {{"--harness", "--slot", "rules"}, "--slot"},
      {{"--harness", "--harness=codex"}, "--harness=codex"},
      {{"--harness", "nobody", "--harness", "codex"}, "nobody"},
      {{"--harness", "nobody", "--slot", "pretool"}, "nobody"},
      {{"--harness", "a\"b"}, "a\"b"},
      {{"--harness", " "}, " "},
  };
  for (const auto& [arguments, name] : table) {
    expectRefusal(arguments,
                  "unknown harness \"" + name + "\" — injecting nothing. " + knownHarnesses);
  }
}

TEST_F(CommandLine, WithAnUnknownSlotIsRefusedTheSameWayInEveryHarness) {
  const std::vector<std::pair<Arguments, std::string>> table{
      {{"--slot", "Recall"}, "Recall"},
      {{"--slot=RULES"}, "RULES"},
      {{"--slot", "pretool "}, "pretool "},
      {{"--slot", " index"}, " index"},
      {{"--slot", "rule"}, "rule"},
      {{"--slot", "rules,index"}, "rules,index"},
      {{"--slot==rules"}, "=rules"},
      {{"--slot", "--slot", "rules"}, "--slot"},
      {{"--slot", "none", "--slot", "rules"}, "none"},
      {{"--slot", " "}, " "},
  };
  for (const Harness& harness : harnesses()) {
    for (const auto& [slot, name] : table) {
      Arguments arguments{"--harness", harness.name};
      arguments.insert(arguments.end(), slot.begin(), slot.end());
      expectRefusal(arguments, "unknown slot \"" + name + "\" — injecting nothing. " + knownSlots);
    }
  }
}

TEST_F(CommandLine, TakesTheNextArgumentAsTheSlotWhateverItIs) {
  expectRefusal({"--slot", "--harness", "codex"},
                "unknown slot \"--harness\" — injecting nothing. " + knownSlots);
}

TEST_F(CommandLine, IsRefusedWithoutWaitingForThePayload) {
  const HookStart start = starting({"--harness", "nobody"});
  HookRun run(start);
  run.awaitAnswer();  // standard input is still open
  EXPECT_EQ(run.finish().output, refusalAnswer);
}

TEST_F(CommandLine, KnowsEachHarnessInBothForms) {
  for (const Harness& harness : harnesses()) {
    EXPECT_EQ(chosenHarness({"--harness", harness.name}), harness.name);
    EXPECT_EQ(chosenHarness({"--harness=" + harness.name}), harness.name);
  }
}

TEST_F(CommandLine, LetsTheFirstHarnessWin) {
  EXPECT_EQ(chosenHarness({"--harness", "claude-code", "--harness", "codex"}), "claude-code");
  EXPECT_EQ(chosenHarness({"--harness=opencode", "--harness", "codex"}), "opencode");
  EXPECT_EQ(chosenHarness({"--harness", "cursor", "--harness="}), "cursor");
}

TEST_F(CommandLine, PassesOverWhatItDoesNotKnow) {
  EXPECT_EQ(chosenHarness({"x", "", "-v", "--harnesses=a", "--harness", "codex", "--more"}),
            "codex");
  EXPECT_EQ(chosenSlot({"--slotx", "rules", "--harness", "codex", "--slots=rules", "--slot=index"}),
            "index");
}

TEST_F(CommandLine, KnowsEachPromptSlotInBothForms) {
  for (const std::string slot : {"rules", "index", "recall"}) {
    EXPECT_EQ(chosenSlot({"--harness", "codex", "--slot", slot}), slot);
    EXPECT_EQ(chosenSlot({"--harness", "codex", "--slot=" + slot}), slot);
    EXPECT_EQ(chosenSlot({"--slot=" + slot, "--harness", "codex"}), slot);
  }
}

TEST_F(CommandLine, LetsTheFirstSlotWin) {
  EXPECT_EQ(chosenSlot({"--harness", "codex", "--slot", "rules", "--slot", "index"}), "rules");
  EXPECT_EQ(chosenSlot({"--harness", "codex", "--slot=index", "--slot", "nothing"}), "index");
}

TEST_F(CommandLine, TakesAnEmptySlotForNone) {
  const std::vector<Arguments> table{
      {"--harness", "codex"},
      {"--harness", "codex", "--slot"},
      {"--harness", "codex", "--slot="},
      {"--harness", "codex", "--slot", ""},
      {"--harness", "codex", "--slot=", "--slot", "rules"},
      {"--harness", "codex", "--slot", "", "--slot=nothing"},
  };
  for (const Arguments& arguments : table) EXPECT_EQ(chosenSlot(arguments), "");
}

TEST_F(CommandLine, ServesThePretoolSlotWithoutServerOrLog) {
  for (const Harness& harness : harnesses()) {
    for (const Arguments& slot : {Arguments{"--slot", "pretool"}, Arguments{"--slot=pretool"}}) {
      Arguments arguments{"--harness", harness.name};
      arguments.insert(arguments.end(), slot.begin(), slot.end());
      const HookEnd end = started(arguments);
      EXPECT_EQ(end.output, "{}\n") << harness.name;
      EXPECT_EQ(end.error, "");
    }
  }
  EXPECT_TRUE(server.calls().empty());
  EXPECT_TRUE(logLines().empty());
}

}  // namespace
}  // namespace quillstead
