#include "GeneratedInput.h"
#include "HookTest.h"
#include "ToolCall.h"
#include "helpers/StampedDocument.h"
#include "hook/SessionStamp.h"
#include "hook/SubagentStamp.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>

namespace quillstead::hook {
namespace {

/// Gives the answer document to a payload, without its line end.
using Answerer = std::function<std::optional<std::string>(std::string payload)>;

constexpr std::uint64_t inProcess = isSanitized ? 300 : 1'500;
constexpr std::uint64_t throughTheHook = 40;

class StampProperty : public HookTest {
 protected:
  /// Of the made-up inputs of so many seeds, each comes back when the stamp is taken out of the
  /// answer, and the stamp is there once.
  static void expectInputsGivenBack(const ToolCall& call, std::uint64_t seeds,
                                    const Answerer& answerTo) {
    for (std::uint64_t seed = 1; seed <= seeds && !HasFailure(); ++seed) {
      GeneratedInput generated(seed);
      const JSON::Object input = generated.object();
      const std::string identity = "me " + std::to_string(seed);
      const std::string payload = call.payload(generated.written(input), identity);
      const std::optional<std::string> answer = answerTo(payload);
      ASSERT_TRUE(answer) << seed << " " << payload;
      const std::string_view stamped = call.inputIn(*answer);
      const JSON::Value given = document(stamped);
      ASSERT_TRUE(given.object());
      EXPECT_TRUE(isSame(without(*given.object(), call.stampKey), without(input, call.stampKey),
                         Members::ordered))
          << seed << "\n"
          << payload << "\n"
          << *answer;
      EXPECT_TRUE(JSON::isText(given.object()->find(call.stampKey), identity)) << seed;
      const auto keys = writtenKeys(stamped);
      EXPECT_EQ(std::count(keys.begin(), keys.end(), call.stampKey), 1) << seed;
      EXPECT_EQ(keys.size(), given.object()->size()) << seed;
      EXPECT_TRUE(isCompact(*answer, JSON::Slashes::plain)) << seed;
    }
  }

  [[nodiscard]] static Answerer answerer(PretoolAnswer::Stamp stamp) {
    return [stamp](std::string payload) { return stampedDocument(std::move(payload), stamp); };
  }

  [[nodiscard]] Answerer hookOf(const Harness& harness) const {
    return [this, &harness](const std::string& payload) {
      std::string output = run(harness, "pretool", payload).output;
      if (output.ends_with('\n')) output.pop_back();
      return output;
    };
  }
};

TEST_F(StampProperty, OfTheSessionIsThatItTakesNothingAndAddsNothingElse) {
  for (const ToolCall& call : cursorCalls()) {
    expectInputsGivenBack(call, inProcess, answerer(SessionStamp::answer));
  }
}

TEST_F(StampProperty, OfTheSubAgentIsThatItTakesNothingAndAddsNothingElse) {
  expectInputsGivenBack(subagentCalls().front(), inProcess, answerer(SubagentStamp::answer));
}

TEST_F(StampProperty, HoldsInTheHook) {
  for (const ToolCall& call : toolCalls()) {
    expectInputsGivenBack(call, throughTheHook, hookOf(call.harness));
  }
}

TEST_F(StampProperty, OfTheParentTagIsThatItChangesThePromptAlone) {
  for (std::uint64_t seed = 1; seed <= inProcess && !HasFailure(); ++seed) {
    GeneratedInput generated(seed);
    JSON::Object input = generated.object();
    const std::string prompt = "prompt " + std::to_string(seed);
    input.set("prompt", prompt);
    const std::string payload =
        R"({"tool_name":"Task","session_id":"s","tool_input":)" + generated.written(input) + "}";
    const std::optional<std::string> answer = answerer(SessionStamp::answer)(payload);
    ASSERT_TRUE(answer) << seed << " " << payload;
    input.set("prompt", prompt + "\n\n[qs-parent:s]");
    const JSON::Value expected = JSON::objectOf({{"updated_input", input}});
    EXPECT_TRUE(isSame(document(*answer), expected, Members::ordered)) << seed << "\n" << *answer;
    const std::string wrapper = R"({"updated_input":)";
    EXPECT_EQ(writtenKeys(std::string_view(*answer).substr(wrapper.size())).size(), input.size());
  }
}

}  // namespace
}  // namespace quillstead::hook
