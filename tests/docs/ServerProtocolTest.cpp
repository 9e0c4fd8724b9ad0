// The examples of docs/server-protocol.md are what the hook reads and writes.
#include "contract/Contract.h"
#include "hook/BlockSplit.h"
#include "hook/ContextBudget.h"
#include "hook/Lanes/MemoryLane.h"
#include "hook/Lanes/RulesLane.h"
#include "support/JSON/Writer.h"
#include "support/Text/Text.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace quillstead::hook {
namespace {

constexpr std::string_view rulesGet = contract::Tool::rulesGet;
constexpr std::string_view memoryGetRelevant = contract::Tool::memoryGetRelevant;

std::string page() {
  std::ifstream file(std::string(QUILLSTEAD_SOURCE_DIR) + "/docs/server-protocol.md");
  EXPECT_TRUE(file.is_open());
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The first text between `begin` and `end` after `start`, which moves behind it.
std::string between(std::string_view text, std::size_t& start, std::string_view begin,
                    std::string_view end) {
  const std::size_t from = text.find(begin, start);
  const std::size_t to =
      from == std::string_view::npos ? from : text.find(end, from + begin.size());
  EXPECT_NE(to, std::string_view::npos) << begin;
  if (to == std::string_view::npos) return {};
  start = to + end.size();
  return std::string(text.substr(from + begin.size(), to - from - begin.size()));
}

std::string joined(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line.append(line.empty() ? "" : " ").append(field);
  return line;
}

LaneOutcome ran(std::string_view tool, const unit::Server& server) {
  const HookInput input{.prompt = "p", .cwd = {}, .sessionID = {}, .transcriptPath = {}};
  if (tool == memoryGetRelevant) {
    return MemoryLane::run(input, server.client(), unit::ampleDeadline());
  }
  return RulesLane::run(input, {.card = true, .cardCeiling = {}, .cardHeadCeiling = {}},
                        server.client(), unit::ampleDeadline());
}

/// An exchange of the page: what the server writes, and the fields it leads to.
struct Example {
  std::string output;
  std::string fields;
};

Example exampleFor(std::string_view tool) {
  const std::string text = page();
  std::size_t at = text.find("The server answers `" + std::string(tool) + "`:");
  EXPECT_NE(at, std::string::npos);
  Example example;
  example.output = between(text, at, "```jsonl\n", "```");
  example.fields = between(text, at, "The log says `", "`");
  return example;
}

/// Runs the page's example, which has to lead to the page's fields.
LaneOutcome ranExample(std::string_view tool) {
  const Example example = exampleFor(tool);
  const unit::Server server;
  server.print(tool, example.output);
  LaneOutcome outcome = ran(tool, server);
  EXPECT_EQ(joined(outcome.fields), example.fields);
  return outcome;
}

struct Mistake {
  std::string tool;
  std::string result;
  std::string fields;
};

/// The rows whose first cell is a tool and whose second is a result.
std::vector<Mistake> mistakes() {
  std::vector<Mistake> all;
  std::istringstream lines(page());
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("| `") || line.find("` | `{\"content\"") == std::string::npos) continue;
    std::size_t at = 0;
    Mistake mistake;
    mistake.tool = between(line, at, "| `", "` ");
    mistake.result = between(line, at, "| `", "` ");
    mistake.fields = between(line, at, "| `", "` ");
    all.push_back(std::move(mistake));
  }
  return all;
}

TEST(ServerProtocol, TheRequestsOnThePageAreTheOnesThatTheHookSends) {
  const std::string text = page();
  std::size_t at = 0;
  const std::string requests = between(text, at, "```jsonl\n", "```");
  const unit::Server server;
  const HookInput input{.prompt = "how do we deploy?",
                        .cwd = "/home/me/shop",
                        .sessionID = "0f8b5c1e",
                        .transcriptPath = "/home/me/t.jsonl"};
  (void)MemoryLane::run(input, server.client("codex"), unit::ampleDeadline());
  std::istringstream expected(requests);
  std::istringstream sent(server.request(memoryGetRelevant));
  for (std::string line; std::getline(expected, line);) {
    std::string other;
    ASSERT_TRUE(std::getline(sent, other));
    EXPECT_TRUE(unit::areEquivalent(unit::parsed(line), unit::parsed(other))) << other;
  }
  EXPECT_TRUE(sent.peek() == std::istringstream::traits_type::eof());
}

TEST(ServerProtocol, TheCardsOnThePageCanBeTrimmedByTheirSpans) {
  const LaneOutcome outcome = ranExample(memoryGetRelevant);
  ASSERT_TRUE(outcome.block && outcome.cardSpans && outcome.shortcut && outcome.justEnded);
  const auto envelope = ContextBudget::Envelope::measured(*outcome.block, *outcome.cardSpans);
  ASSERT_TRUE(envelope);
  EXPECT_EQ(envelope->rendered(1),
            "<quillstead-memory>\nFrom memory:\n\n## Deploy\nmake release\n</quillstead-memory>");
}

TEST(ServerProtocol, TheRulesOnThePageSplitAtTheirIndex) {
  const LaneOutcome outcome = ranExample(rulesGet);
  ASSERT_TRUE(outcome.block && outcome.indexSpan);
  const auto halves = BlockSplit::split(*outcome.block, *outcome.indexSpan);
  ASSERT_TRUE(halves);
  EXPECT_EQ(halves->head, "<user-rules>\nAlways run the tests.\n</user-rules>");
  EXPECT_EQ(halves->index,
            "<user-rules>\nMemory holds 2 cards:\n- Deploy\n- Staging\n</user-rules>");
}

TEST(ServerProtocol, EachMistakeOnThePageDoesWhatThePageSays) {
  const std::vector<Mistake> all = mistakes();
  ASSERT_EQ(all.size(), 13U);
  for (const Mistake& mistake : all) {
    const unit::Server server;
    server.answer(mistake.tool, mistake.result);
    const LaneOutcome outcome = ran(mistake.tool, server);
    EXPECT_EQ(joined(outcome.fields), mistake.fields) << mistake.result;
    const bool brings = mistake.fields.find("rules=1") != std::string::npos ||
                        mistake.fields.find("cards=1") != std::string::npos;
    EXPECT_EQ(outcome.block.has_value(), brings) << mistake.result;
    EXPECT_FALSE(outcome.indexSpan || outcome.cardSpans || outcome.shortcut) << mistake.result;
  }
}

TEST(ServerProtocol, ThePageHasEveryKeyOfTheContract) {
  const std::string text = page();
  for (const std::string_view key :
       {contract::Meta::replyKind, contract::Meta::rulesLane, contract::Meta::card,
        contract::Meta::indexSpan, contract::Meta::cardCount, contract::Meta::cardSpans,
        contract::Meta::shortcut, contract::Meta::shortcutMiss, contract::Meta::now,
        contract::Argument::prompt, contract::Argument::cwd, contract::Argument::sessionID,
        contract::Argument::transcriptPath, contract::Argument::card,
        contract::Argument::cardCeiling, contract::Argument::cardHeadCeiling}) {
    EXPECT_NE(text.find("`" + std::string(key) + "`"), std::string::npos) << key;
  }
}

}  // namespace
}  // namespace quillstead::hook
