#include "HookTest.h"

#include <string>
#include <vector>

namespace quillstead {
namespace {

using namespace std::string_literals;

/// A response to the tool call with the text `text`.
std::string response(const std::string& id, const std::string& text) {
  return R"({"jsonrpc":"2.0","id":)" + id + R"(,"result":{"content":[{"type":"text","text":)" +
         jsonString(text) + R"(}],"_meta":{"quillstead/replyKind":"rules"}}})";
}

const std::string handshakeResponse = R"({"jsonrpc":"2.0","id":1,"result":{}})";
const std::string answerA = response("2", "A");
const std::string noEnvelope = "rules=MISS:no-envelope";
const std::string noKind = "rules=MISS:no-kind";

class ServerReply : public HookTest {
 protected:
  /// Runs the hook against a server that prints `output`; `text` is what should go out, empty for
  /// nothing.
  void expectReading(const std::string& output, const std::string& text,
                     const std::string& trail) const {
    SCOPED_TRACE(output);
    const Harness& codex = harness("codex");
    HookStart start = starting(codex, "rules");
    start.environment["QUILLSTEAD_RULES_CARD"] = "0";
    writeFile(server.directory() + "/" + std::string(rulesTool) + ".output", output);
    forgetLog();
    const HookEnd end = runHook(start, "{}");
    EXPECT_THAT(end.output, isAnswer(text.empty() ? *codex.silence : codex.envelope(text)));
    EXPECT_EQ(end.error, "");
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(onlyRecord().trail, "slot=rules " + trail);
  }

  void expectText(const std::string& output, const std::string& text) const {
    expectReading(output, text, "rules=1");
  }

  /// The same for the result of the tool call.
  void expectResult(const std::string& result, const std::string& text,
                    const std::string& trail) const {
    expectReading(
        handshakeResponse + "\n" + R"({"jsonrpc":"2.0","id":2,"result":)" + result + "}\n", text,
        trail);
  }
};

TEST_F(ServerReply, IsTheLineWithTheToolCallsNumber) {
  const std::vector<std::string> table{
      handshakeResponse + "\n" + answerA + "\n",
      answerA + "\n" + handshakeResponse + "\n",
      answerA + "\n",
      answerA,
      handshakeResponse + "\n" + answerA,
      handshakeResponse + "\r\n" + answerA + "\r\n",
      "\n\n" + handshakeResponse + "\n\n\n" + answerA + "\n\n",
      "quillstead-mcp 1.0, ready\n" + handshakeResponse + "\n" + answerA + "\n",
      "{\"half\":\n" + answerA + "\n",
      "\xff\xfe\xfd\n" + answerA + "\n",
      "\0\0\n"s + answerA + "\n",
      "2\n\"2\"\nnull\n[2]\n[{\"id\":2}]\n" + answerA + "\n",
      R"({"jsonrpc":"2.0","method":"notifications/message","params":{"id":2}})"
      "\n" +
          answerA,
      R"({"id":"2","result":{}})"
      "\n" +
          answerA,
      "{\"id\":null}\n{\"id\":true}\n{\"id\":[2]}\n{\"id\":{\"id\":2}}\n{}\n" + answerA,
      "{\"id\":3}\n{\"id\":-2}\n{\"id\":20}\n{\"id\":1.99}\n{\"id\":3.0}\n{\"id\":2e1}\n" + answerA,
      "  " + answerA + " \t\n",
      response("2.0", "A"),
      response("2.7", "A"),
      response("2e0", "A"),
      response("20e-1", "A"),
      answerA + "\n" + response("2", "later") + "\n",
  };
  for (const std::string& output : table) expectText(output, "A");
}

TEST_F(ServerReply, IsMissedWhenNoLineHasTheToolCallsNumber) {
  const std::vector<std::string> table{
      "",
      "\n\n\n",
      "nonsense\n",
      handshakeResponse + "\n",
      response("\"2\"", "A"),
      response("3", "A"),
      response("1", "A"),
      response("1.999", "A"),
      response("-2", "A"),
      response("true", "A"),
      response("123456789012345678901234567890", "A"),
      "[" + answerA + "]",
      answerA + answerA,
      answerA + " x",
      answerA.substr(0, answerA.size() - 1),
      "\"" + answerA + "\"",
  };
  for (const std::string& output : table) expectReading(output, "", noEnvelope);
}

TEST_F(ServerReply, IsTheFirstLineOfItsNumberAlsoWhenALaterOneIsBetter) {
  expectReading("{\"id\":2}\n" + answerA, "", noEnvelope);
  expectReading(R"({"id":2,"error":{"code":-1,"message":"no"}})"
                "\n" +
                    answerA,
                "", noEnvelope);
}

TEST_F(ServerReply, NeedsAResultThatIsAnObject) {
  for (const std::string result : {"null", "[]", "\"A\"", "5", "true", "[{\"content\":[]}]"}) {
    expectResult(result, "", noEnvelope);
  }
  expectReading(R"({"jsonrpc":"2.0","id":2,"error":{"code":-32601,"message":"no such tool"}})", "",
                noEnvelope);
}

TEST_F(ServerReply, IsMissedWhenItSaysThatItIsAnError) {
  const std::vector<std::pair<std::string, bool>> table{
      {"null", false}, {"false", false}, {"0", false},  {"0.0", false},   {"-0", false},
      {"0e9", false},  {"\"\"", false},  {"[]", false}, {"{}", false},    {"true", true},
      {"1", true},     {"2", true},      {"-1", true},  {"0.5", true},    {"\"false\"", true},
      {"\"0\"", true}, {"\" \"", true},  {"[0]", true}, {"[null]", true}, {"{\"a\":null}", true},
  };
  for (const auto& [value, isError] : table) {
    const std::string result = R"({"isError":)" + value +
                               R"(,"content":[{"type":"text","text":"A"}],)"
                               R"("_meta":{"quillstead/replyKind":"rules"}})";
    expectResult(result, isError ? "" : "A", isError ? noEnvelope : "rules=1");
  }
}

TEST_F(ServerReply, GivesTheFirstTextOfItsContent) {
  const std::vector<std::pair<std::string, std::string>> table{
      {R"([{"type":"image"},{"type":"text","text":"A"},{"type":"text","text":"B"}])", "A"},
      {R"([{"text":"A","type":"text","more":1}])", "A"},
      {R"(["A",5,null,[{"type":"text","text":"X"}],{"type":"text","text":"B"}])", "B"},
      {R"([{"type":"Text","text":"X"},{"type":5,"text":"X"},{"text":"X"},{"type":"text","text":"C"}])",
       "C"},
      {R"([{"type":"text","text":"\u00fc\ud83d\ude42\/"}])", "ü🙂/"},
      {R"([{"type":"text","text":" "}])", " "},
  };
  for (const auto& [content, text] : table) {
    expectResult(R"({"_meta":{"quillstead/replyKind":"rules"},"content":)" + content + "}", text,
                 "rules=1");
  }
}

TEST_F(ServerReply, IsMissedWhenItsContentHasNoText) {
  const std::vector<std::string> table{
      "[]",
      "null",
      "{}",
      "\"A\"",
      R"({"type":"text","text":"A"})",
      R"([{"type":"image","data":"A"}])",
      R"([{"type":"text","text":5}])",
      R"([{"type":"text"}])",
      R"([{"type":"text","text":null},{"type":"text","text":"A"}])",
      R"([{"type":"text","text":["A"]},{"type":"text","text":"A"}])",
  };
  for (const std::string& content : table) {
    expectResult(R"({"_meta":{"quillstead/replyKind":"rules"},"content":)" + content + "}", "",
                 noEnvelope);
  }
  expectResult(R"({"_meta":{"quillstead/replyKind":"rules"}})", "", noEnvelope);
}

TEST_F(ServerReply, HasNoMetadataWhenThatIsNoObject) {
  for (const std::string meta : {"null", "[]", "\"rules\"", "5", "{}"}) {
    expectResult(R"({"content":[{"type":"text","text":"A"}],"_meta":)" + meta + "}", "", noKind);
  }
  expectResult(R"({"content":[{"type":"text","text":"A"}]})", "", noKind);
}

TEST_F(ServerReply, IsReadWithTheLastOfAKeyThatComesTwice) {
  expectText(
      R"({"id":1,"id":2,"result":5,"result":{"content":[{"type":"text","text":"A","text":"B"}],)"
      R"("_meta":{"quillstead/replyKind":"empty","quillstead/replyKind":"rules"}}})",
      "B");
}

TEST_F(ServerReply, ThatIsMissedLetsTheMemoryBeAskedAllTheSame) {
  server.answer(memoryTool, memoryBlock("", {"a card"}), cardsMeta({"a card"}));
  for (const Harness& harness : harnesses()) {
    const HookEnd end = run(harness, "", harness.payload({}));
    EXPECT_THAT(end.output, isAnswer(harness.envelope(memoryBlock("", {"a card"}))));
    EXPECT_EQ(onlyRecord().trail, "rules=MISS:no-envelope cards=1");
    forgetLog();
  }
}

}  // namespace
}  // namespace quillstead
