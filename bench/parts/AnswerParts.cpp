// What stands between a server's output and the answer: finding the reply, splitting the rules,
// fitting the cards.
#include "Documents.h"
#include "hook/BlockSplit.h"
#include "hook/ContextBudget.h"
#include "hook/MCP/MCPClient.h"

#include <benchmark/benchmark.h>

namespace {

using namespace quillstead;
using namespace quillstead::hook;

std::size_t count(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

std::string replyWithText(std::string_view text) {
  return R"({"jsonrpc":"2.0","id":2,"result":{"content":[{"type":"text","text":")" +
         std::string(text) + R"("}],"_meta":{"quillstead/replyKind":"rules"}}})" + "\n";
}

/// The reply stands behind so many lines that are not it.
void replyBehindLines(benchmark::State& state) {
  std::string output;
  for (std::size_t line = 1; line < count(state); ++line) {
    output += R"({"jsonrpc":"2.0","method":"notifications/message","params":{"data":"working"}})";
    output += '\n';
  }
  output += replyWithText("found");
  for ([[maybe_unused]] const auto _ : state) {
    const MCPReply reply = MCPReply::from(output);
    if (reply.text != "found") state.SkipWithError("no reply");
    benchmark::DoNotOptimize(reply);
  }
}

void replyOfSize(benchmark::State& state) {
  const std::string document = Documents::longText(count(state));
  const std::string_view text = std::string_view(document).substr(9, document.size() - 11);
  const std::string output = replyWithText(text);
  for ([[maybe_unused]] const auto _ : state) {
    const MCPReply reply = MCPReply::from(output);
    if (!reply.text) state.SkipWithError("no reply");
    benchmark::DoNotOptimize(reply);
  }
}

void split(benchmark::State& state) {
  constexpr std::int64_t indexSpan = 100;
  std::string block(BlockSplit::opening);
  block.append(count(state), 'r');
  block[block.size() - indexSpan - 1] = '\n';
  block += BlockSplit::closing;
  for ([[maybe_unused]] const auto _ : state) {
    const auto halves = BlockSplit::split(block, indexSpan);
    if (!halves) state.SkipWithError("not split");
    benchmark::DoNotOptimize(halves);
  }
}

/// So many cards of ninety bytes, of which only half fit. With the copy of the texts that a run
/// does not make, since a run has them only once.
void fit(benchmark::State& state) {
  constexpr std::size_t cardSize = 90;
  std::string memory(ContextBudget::Envelope::opening);
  memory += "header";
  for (std::size_t card = 0; card < count(state); ++card) {
    memory += ContextBudget::Envelope::gap;
    memory.append(cardSize, 'c');
  }
  memory += ContextBudget::Envelope::closing;
  const ContextBudget::Texts texts{
      .rules = std::nullopt,
      .memory = memory,
      .cardCount = state.range(0),
      .cardSpans = std::vector<std::int64_t>(count(state), std::int64_t{cardSize}),
      .limit = static_cast<std::int64_t>(memory.size() / 2 + 2 * cardSize),
      .shortcut = std::nullopt,
      .justEnded = std::nullopt};
  for ([[maybe_unused]] const auto _ : state) {
    const ContextBudget::Fitted fitted = ContextBudget::fit(texts);
    if (fitted.texts.size() != 1) state.SkipWithError("not fitted");
    benchmark::DoNotOptimize(fitted);
  }
}

BENCHMARK(replyBehindLines)->RangeMultiplier(10)->Range(1, 100'000);
BENCHMARK(replyOfSize)->RangeMultiplier(10)->Range(1'000, 10'000'000);
BENCHMARK(split)->RangeMultiplier(10)->Range(1'000, 10'000'000);
BENCHMARK(fit)->Arg(10)->Arg(31)->Arg(100)->Arg(316)->Arg(999);

}  // namespace
