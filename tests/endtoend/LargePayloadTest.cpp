#include "HookTest.h"
#include "ToolCall.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace quillstead {
namespace {

constexpr std::size_t hundredMegabytes = 100'000'000;

/// The most memory, in bytes, that a process has had so far; 0 on a system that does not tell of
/// another process.
std::size_t peakMemoryOf(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stoul(line.substr(6)) * 1'024;
  }
  return 0;
}

class LargePayload : public HookTest {
 protected:
  void SetUp() override {
    if (isSanitized) GTEST_SKIP() << "sanitizers take several times the memory and the time";
  }

  /// Sends a call whose input is `start`, then `piece` again and again up to a hundred megabytes,
  /// then `end`; all of it comes back with the stamp behind.
  void expectGivenBack(const ToolCall& call, const std::string& start, const std::string& piece,
                       const std::string& end) const {
    SCOPED_TRACE(call.harness.name + " " + start);
    const std::size_t count = hundredMegabytes / piece.size();
    const std::string payload = call.payload("{" + start + "@" + end + "}");
    const HookStart hook = starting(call.harness, "pretool");
    HookRun run(hook);
    run.feed(payload.substr(0, payload.find('@')));
    for (std::size_t fed = 0; fed < count; ++fed) run.feed(piece);
    run.feed(payload.substr(payload.find('@') + 1));
    run.closeInput();
    run.awaitAnswer();
    const std::size_t peak = peakMemoryOf(run.process());  // nothing is left to do but to write
    const HookEnd ended = run.finish();
    EXPECT_EQ(ended.status, 0);
    expectAnswer(call, ended.output, start, piece, count, end);
    RecordProperty("milliseconds", static_cast<int>(ended.duration.count()));
#if defined(__linux__)
    EXPECT_GT(peak, 0U);
#endif
    EXPECT_LT(peak, 4 * hundredMegabytes);
  }

  static void expectAnswer(const ToolCall& call, std::string_view output, const std::string& start,
                           const std::string& piece, std::size_t count, const std::string& end) {
    ASSERT_TRUE(output.ends_with('\n'));
    std::string_view rest = call.inputIn(output);
    const std::string opening = "{" + start;
    const std::string closing = end + "," + jsonString(call.stampKey) + R"(:"me"})";
    ASSERT_TRUE(rest.starts_with(opening));
    ASSERT_TRUE(rest.ends_with(closing));
    rest.remove_prefix(opening.size());
    rest.remove_suffix(closing.size());
    ASSERT_EQ(rest.size(), count * piece.size());
    for (std::size_t at = 0; at < rest.size(); at += piece.size()) {
      ASSERT_TRUE(rest.substr(at, piece.size()) == piece) << "at " << at;
    }
  }
};

TEST_F(LargePayload, OfOneTextComesBack) {
  std::string piece;
  while (piece.size() < 1'000'000) piece += "some / text of ümlauts and 🙂 ";
  expectGivenBack(toolCalls().back(), R"("text":")", piece, "\"");
}

TEST_F(LargePayload, OfManyTextsComesBack) {
  const std::string piece = ",[" + jsonString(std::string(4'000, 't')) + ",{\"n\":0.10}]";
  expectGivenBack(toolCalls().at(2), R"("texts":[-0)", piece, "]");
}

TEST_F(LargePayload, OfEscapesComesBack) {
  std::string piece;
  while (piece.size() < 1'000'000) piece += R"(line\n\"quoted\" and \\ )";
  expectGivenBack(toolCalls().front(), R"("text":")", piece, "\"");
}

}  // namespace
}  // namespace quillstead
