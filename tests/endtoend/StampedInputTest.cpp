#include "HookTest.h"
#include "ToolCall.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {
namespace {

std::string escaped(char character, std::string_view digits = "0123456789abcdef") {
  const auto byte = static_cast<unsigned char>(character);
  return std::string("\\u00") + digits[byte >> 4U] + digits[byte & 0xFU];
}

/// `key` as JSON texts: plain, and with characters of it as escapes.
std::vector<std::string> spellingsOf(const std::string& key) {
  std::string allEscaped;
  for (const char character : key) allEscaped += escaped(character);
  std::vector<std::string> spellings{jsonString(key), "\"" + allEscaped + "\""};
  for (const std::size_t at : {std::size_t{0}, std::size_t{5}, key.size() - 1}) {
    for (const std::string_view digits : {"0123456789abcdef", "0123456789ABCDEF"}) {
      spellings.push_back("\"" + key.substr(0, at) + escaped(key[at], digits) + key.substr(at + 1) +
                          "\"");
    }
  }
  return spellings;
}

class StampedInput : public HookTest {
 protected:
  [[nodiscard]] std::string answerTo(const ToolCall& call, const std::string& payload) const {
    const HookEnd end = run(call.harness, "pretool", payload);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_TRUE(end.output.ends_with("}\n"));
    return end.output;
  }

  /// The answer to `input` gives it back with one stamp more; gives the answer's input.
  std::string expectGivenBack(const ToolCall& call, const std::string& input) const {
    SCOPED_TRACE(call.harness.name + " " + input.substr(0, 200));
    const std::string answer = answerTo(call, call.payload(input));
    std::string stamped(call.inputIn(answer));
    const JSON::Value given = document(stamped);
    if (!given.object()) return "";
    EXPECT_TRUE(JSON::isText(given.object()->find(call.stampKey), "me"));
    EXPECT_TRUE(isSame(without(*given.object(), call.stampKey), document(input), Members::ordered))
        << stamped.substr(0, 1'000);
    EXPECT_TRUE(isCompact(answer.substr(0, answer.size() - 1), JSON::Slashes::plain));
    return stamped;
  }
};

TEST_F(StampedInput, ComesBackInValueAndOrder) {
  const std::vector<std::string> table{
      "{}",
      R"({"z":1,"a":2,"m":3,"":4})",
      R"({"a":{},"b":[],"c":[[],{}],"d":{"e":{}}})",
      R"({"null":null,"true":true,"false":false})",
      R"({ "a" : [ 1 , 2 ] ,
           "b" : { "c" : "d" } })",
      R"({"s":"\"\\\/\b\f\n\r\t","/":"/"})",
      R"({"s":"\u0000\u0001\u001f\u007f\u0080\u00e9\u2028\ufffd\uffff"})",
      R"({"s":"\ud83d\ude42 🙂 é 日本 \uD83D\uDE42"})",
      R"({"\u006b\u0065y":"v","k\ud83d\ude42":1,"a\/b":2})",
      R"({"same":{"same":{"same":[{"same":1}]}}})",
      R"({"prompt":"p","tool_input":{"tool_name":"Task"},"session_id":"x","agent_id":"y"})",
      R"({"nested":{"_quillstead_session":"inner","_quillstead_subagent":"inner"}})",
      R"({"_quillstead_Session":1,"_quillstead_subagents":2,"quillstead_session":3})",
      R"({"deep":)" + std::string(510, '[') + std::string(510, ']') + "}",
  };
  for (const ToolCall& call : toolCalls()) {
    for (const std::string& input : table) expectGivenBack(call, input);
  }
}

TEST_F(StampedInput, KeepsNumbersToTheLetter) {
  const std::vector<std::string> numbers{
      "0",
      "-0",
      "0.0",
      "-0.0",
      "1",
      "-1",
      "0.1",
      "1e300",
      "1E+300",
      "1e-300",
      "1.0",
      "1.50",
      "123456789012345678901234567890",
      "-123456789012345678901234567890",
      "9223372036854775807",
      "9223372036854775808",
      "-9223372036854775808",
      "-9223372036854775809",
      "18446744073709551615",
      "18446744073709551616",
      "0.30000000000000004",
      "0.1000000000000000055511151231257827021181583404541015625",
      "3.141592653589793238462643383279502884197169399375105820974944592307816406286",
      "1e400",
      "-1e400",
      "1e-400",
      "4.9e-324",
      "1E5",
      "1e+5",
      "1e05",
      "100e-2",
      "0e0",
      "-0e-0",
      "1e2147483648",
      "-1.5E-99999999999999999999",
      std::string(5'000, '7'),
      "0." + std::string(5'000, '3'),
  };
  std::string members;
  for (const std::string& number : numbers) {
    members += (members.empty() ? "" : ",") + jsonString("n" + number.substr(0, 40)) + ":" + number;
  }
  for (const ToolCall& call : toolCalls()) {
    EXPECT_NE(expectGivenBack(call, "{" + members + "}").find(members), std::string::npos);
    const std::string array = "[" + members.substr(members.find(':') + 1, 1) + ",-0,1e300,0.10]";
    EXPECT_NE(expectGivenBack(call, R"({"a":)" + array + "}").find(array), std::string::npos);
  }
}

TEST_F(StampedInput, KeepsSlashesAndOtherCharactersUnescaped) {
  const std::string member = R"("/a/b":"http://x/y 🙂 é 日本 <&>'")";
  for (const ToolCall& call : toolCalls()) {
    EXPECT_NE(expectGivenBack(call, "{" + member + "}").find(member), std::string::npos);
  }
}

TEST_F(StampedInput, CountsTheLastOfAKeyThatComesTwice) {
  for (const ToolCall& call : toolCalls()) {
    const std::string answer =
        answerTo(call, call.payload(R"({"a":1,"a":{"b":1,"b":[2]},"\u0061":{"b":3,"\u0062":4}})"));
    const auto keys = writtenKeys(call.inputIn(answer));
    EXPECT_THAT(keys, ::testing::UnorderedElementsAre("a", call.stampKey));
    EXPECT_THAT(answer, isPretoolAnswer(call.answer(R"({"a":{"b":4},)" + jsonString(call.stampKey) +
                                                    R"(:"me"})")));
  }
}

TEST_F(StampedInput, CannotForgeTheStamp) {
  for (const ToolCall& call : toolCalls()) {
    std::vector<std::string> members;
    for (const std::string& spelling : spellingsOf(call.stampKey)) {
      for (const std::string value : {R"("forged")", R"({"a":["forged"]})", R"(["forged"])"}) {
        members.push_back(spelling + ":" + value);
      }
    }
    std::vector<std::string> inputs;
    std::string all = R"("x":1)";
    for (const std::string& member : members) {
      inputs.push_back("{" + member + R"(,"x":1})");
      inputs.push_back(R"({"x":1,)" + member + "}");
      all = member + "," + all + "," + member;
    }
    inputs.push_back("{" + all + "}");
    for (const std::string& input : inputs) {
      const std::string answer = answerTo(call, call.payload(input));
      EXPECT_THAT(answer, isPretoolAnswer(
                              call.answer(R"({"x":1,)" + jsonString(call.stampKey) + R"(:"me"})")))
          << call.harness.name << " " << input;
      EXPECT_THAT(writtenKeys(call.inputIn(answer)),
                  ::testing::UnorderedElementsAre("x", call.stampKey));
      EXPECT_EQ(answer.find("forged"), std::string::npos);
    }
  }
}

TEST_F(StampedInput, CarriesTheLastIdentityOfAPayloadWithSeveral) {
  for (const ToolCall& call : toolCalls()) {
    const std::string id = jsonString(call.identityKey);
    std::string escapedID = id;
    escapedID.replace(escapedID.find('_'), 1, "\\u005f");
    const std::string tool = R"("tool_name":)" + jsonString(call.tool);
    const std::string expected = call.answer("{" + jsonString(call.stampKey) + R"(:"two"})");
    for (const std::string& payload :
         {"{" + id + R"(:"one",)" + id + R"(:"two",)" + tool + R"(,"tool_input":{}})",
          "{" + id + R"(:"one",)" + tool + R"(,"tool_input":{},)" + escapedID + R"(:"two"})",
          "{" + escapedID + R"(:"one",)" + id + R"(:null,)" + tool + R"(,"tool_input":{},)" + id +
              R"(:"two"})",
          R"({"tool_name":"x","tool_input":{"x":1},"tool_input":{},)" + tool + "," + id +
              R"(:"two"})"}) {
      EXPECT_THAT(answerTo(call, payload), isPretoolAnswer(expected)) << payload;
    }
    for (const std::string& payload :
         {"{" + id + R"(:"one",)" + id + R"(:" ",)" + tool + R"(,"tool_input":{}})",
          "{" + id + R"(:"one",)" + escapedID + R"(:null,)" + tool + R"(,"tool_input":{}})",
          "{" + id + R"(:"one",)" + tool + R"(,"tool_input":{},"tool_input":[]})",
          "{" + id + R"(:"one",)" + tool + R"(,"tool_input":{},"tool_name":"x"})"}) {
      EXPECT_EQ(answerTo(call, payload), "{}\n") << payload;
    }
  }
}

TEST_F(StampedInput, MayHoldMoreThanAMillionValues) {
  std::string array = "0";
  for (int element = 0; element < 1'000'000; ++element) array += ",0";
  for (const ToolCall& call : {toolCalls().front(), toolCalls().back()}) {
    const std::string stamp = jsonString(call.stampKey);
    const std::string answer =
        answerTo(call, call.payload(R"({"a":[)" + array + "]," + stamp + R"(:"forged"})"));
    const std::string expected = call.answer(R"({"a":[)" + array + "]," + stamp + R"(:"me"})");
    EXPECT_TRUE(answer == expected + "\n") << call.harness.name << " " << answer.substr(0, 100);
  }
}

}  // namespace
}  // namespace quillstead
