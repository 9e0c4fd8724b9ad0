#include "hook/MCP/MCPClient.h"
#include "unit/helpers/Replies.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

std::string read(std::string_view output) { return unit::described(MCPReply::from(output)); }

std::string readResult(std::string_view result) {
  return read(R"({"jsonrpc":"2.0","id":2,"result":)" + std::string(result) + "}\n");
}

constexpr std::string_view initializeResponse = R"({"jsonrpc":"2.0","id":1,"result":{}})";
constexpr std::string_view goodResponse =
    R"({"jsonrpc":"2.0","id":2,"result":{"content":[{"type":"text","text":"A"}]}})";

// --- Finding the response

TEST(MCPReply, FindsTheResponseToTheToolCallAmongTheLines) {
  const std::string good(goodResponse);
  const std::string initialize(initializeResponse);
  struct Case {
    const char* name;
    std::string output;
  };
  for (const Case& one : {
           Case{"alone", good + "\n"},
           Case{"behind the other response", initialize + "\n" + good + "\n"},
           Case{"before the other response", good + "\n" + initialize + "\n"},
           Case{"behind a banner", "Memory server 1.0 [ready]\n" + initialize + "\n" + good + "\n"},
           Case{"behind a notification",
                R"({"jsonrpc":"2.0","method":"notifications/message","params":{}})"
                "\n" +
                    good + "\n"},
           Case{"behind lines that are no objects", "[1]\n\"2\"\n2\nnull\n" + good + "\n"},
           Case{"behind a line with a lone surrogate", R"({"id":2,"result":"\ud800"})"
                                                       "\n" +
                                                           good + "\n"},
           Case{"behind empty lines", "\n\n" + good + "\n\n"},
           Case{"without a line end", initialize + "\n" + good},
           Case{"with CR LF", initialize + "\r\n" + good + "\r\n"},
           Case{"behind a text as id", R"({"id":"2","result":{"content":[]}})"
                                       "\n" +
                                           good},
           Case{"behind null and other ids", R"({"id":null})"
                                             "\n"
                                             R"({"id":3})"
                                             "\n"
                                             R"({"id":true})"
                                             "\n"
                                             R"({"id":[2]})"
                                             "\n"
                                             R"({"id":22})"
                                             "\n"
                                             R"({"id":-2})"
                                             "\n" +
                                                 good},
           Case{"before a second response", good + "\n"
                                                   R"({"id":2,"result":{}})"},
       }) {
    EXPECT_EQ(read(one.output), "[A] {} -") << one.name;
  }
}

TEST(MCPReply, ReadsTheIdAsAnIntegerByTruncation) {
  struct Case {
    const char* id;
    bool matches;
  };
  for (const Case& one :
       {Case{"2", true}, Case{"2.0", true}, Case{"2.7", true}, Case{"2e0", true},
        Case{"20e-1", true}, Case{"2.9999", true}, Case{"1.9999", false}, Case{"3", false},
        Case{"3.0", false}, Case{"-2", false}, Case{"-2.5", false}, Case{"0", false},
        Case{"1", false}, Case{"\"2\"", false}, Case{"true", false}, Case{"null", false},
        Case{"[2]", false}, Case{"1e400", false}, Case{"18446744073709551618", false}}) {
    const std::string response = std::string(R"({"id":)") + one.id +
                                 R"(,"result":{"content":[{"type":"text","text":"A"}]}})";
    EXPECT_EQ(read(response), one.matches ? "[A] {} -" : "- {} no-envelope") << one.id;
  }
}

TEST(MCPReply, MissesAResponseThatIsNotThere) {
  for (const std::string_view output : {std::string_view(""), std::string_view("\n\n"),
                                        initializeResponse, std::string_view("no JSON at all\n")}) {
    EXPECT_EQ(read(output), "- {} no-envelope") << output;
  }
}

TEST(MCPReply, StopsAtTheFirstResponseEvenWhenItIsNoGood) {
  EXPECT_EQ(read("{\"id\":2}\n" + std::string(goodResponse)), "- {} no-envelope");
  EXPECT_EQ(read(R"({"jsonrpc":"2.0","id":2,"error":{"code":-32601,"message":"no such tool"}})"),
            "- {} no-envelope");
}

// --- Reading the result

TEST(MCPReply, TakesTheFirstTextItemOnly) {
  struct Case {
    const char* content;
    const char* reply;
  };
  for (const Case& one : {
           Case{R"([{"type":"image"},{"type":"text","text":"A"},{"type":"text","text":"B"}])",
                "[A] {} -"},
           Case{R"([{"type":"text","text":""}])", "[] {} -"},
           Case{R"([{"type":"text","text":5}])", "- {} no-envelope"},
           Case{R"([{"type":"text","text":5},{"type":"text","text":"B"}])", "- {} no-envelope"},
           Case{R"([{"type":"text"},{"type":"text","text":"B"}])", "- {} no-envelope"},
           Case{R"([{"type":"text","text":null}])", "- {} no-envelope"},
           Case{R"([{"text":"A"}])", "- {} no-envelope"},
           Case{R"([{"type":"Text","text":"A"}])", "- {} no-envelope"},
           Case{R"(["text",5,null,[{"type":"text","text":"x"}],{"type":"text","text":"A"}])",
                "[A] {} -"},
           Case{"[]", "- {} no-envelope"},
           Case{R"({"type":"text","text":"A"})", "- {} no-envelope"},
           Case{R"("A")", "- {} no-envelope"},
           Case{"null", "- {} no-envelope"},
       }) {
    EXPECT_EQ(readResult(std::string(R"({"content":)") + one.content + "}"), one.reply)
        << one.content;
  }
}

TEST(MCPReply, MissesAResultThatIsNoObjectOrHasNoContent) {
  for (const char* result : {"null", "[]", "5", "\"text\"", "{}", R"({"Content":[]})"}) {
    EXPECT_EQ(readResult(result), "- {} no-envelope") << result;
  }
}

TEST(MCPReply, TakesATruthyErrorForAnErrorEvenWhenThereIsText) {
  struct Case {
    const char* isError;
    bool misses;
  };
  for (const Case& one : {Case{"true", true}, Case{"1", true}, Case{R"("false")", true},
                          Case{"[0]", true}, Case{"false", false}, Case{"null", false},
                          Case{"0", false}, Case{R"("")", false}, Case{"{}", false}}) {
    EXPECT_EQ(readResult(std::string(R"({"content":[{"type":"text","text":"A"}],"isError":)") +
                         one.isError + "}"),
              one.misses ? "- {} no-envelope" : "[A] {} -")
        << one.isError;
  }
}

TEST(MCPReply, CarriesTheMetadataFromWhereItWasFound) {
  struct Case {
    const char* result;
    const char* reply;
  };
  for (const Case& one : {
           Case{R"({"_meta":{"k":[1]},"content":[{"type":"text","text":"A"}]})",
                R"([A] {"k":[1]} -)"},
           Case{R"({"_meta":{"k":1},"content":[{"type":"text","text":"A"}],"isError":true})",
                R"(- {"k":1} no-envelope)"},
           Case{R"({"_meta":{"k":1}})", R"(- {"k":1} no-envelope)"},
           Case{R"({"_meta":{"k":1},"content":5})", R"(- {"k":1} no-envelope)"},
           Case{R"({"_meta":{"k":1},"content":[{"type":"text","text":5}]})",
                R"(- {"k":1} no-envelope)"},
           Case{R"({"_meta":[1],"content":[{"type":"text","text":"A"}]})", "[A] {} -"},
           Case{R"({"_meta":null,"content":[{"type":"text","text":"A"}]})", "[A] {} -"},
       }) {
    EXPECT_EQ(readResult(one.result), one.reply) << one.result;
  }
}

TEST(MCPReply, FindsAnIdHoweverItIsSpelled) {
  for (const char* id : {R"("id")", R"("\u0069d")", R"("i\u0064")", R"("\u0069\u0064")"}) {
    EXPECT_EQ(
        read(std::string("{") + id + R"(:2,"result":{"content":[{"type":"text","text":"A"}]}})"),
        "[A] {} -")
        << id;
  }
}

TEST(MCPReply, IsReadInEveryUnicodeEncoding) {
  for (const std::size_t zeros : {1U, 3U}) {
    std::string little;
    std::string big;
    for (const char character : goodResponse) {
      little.append(1, character).append(zeros, '\0');
      big.append(zeros, '\0').append(1, character);
    }
    EXPECT_EQ(read(little), "[A] {} -") << zeros;
    EXPECT_EQ(read(big), "[A] {} -") << zeros;
  }
}

TEST(MCPReply, GoesByTheLastOfARepeatedId) {
  EXPECT_EQ(read(R"({"id":1,"id":2,"result":{"content":[{"type":"text","text":"A"}]}})"),
            "[A] {} -");
  EXPECT_EQ(read(R"({"id":2,"id":1,"result":{"content":[{"type":"text","text":"A"}]}})"),
            "- {} no-envelope");
}

TEST(MCPReply, TakesAnIdInsideTheResponseForNone) {
  EXPECT_EQ(read(R"({"params":{"id":2},"result":{"content":[{"type":"text","text":"A"}]}})"),
            "- {} no-envelope");
}

TEST(MCPReply, NamesItsTwoReasons) {
  EXPECT_EQ(MCPReply::timeout, "timeout");
  EXPECT_EQ(MCPReply::noEnvelope, "no-envelope");
}

}  // namespace
}  // namespace quillstead::hook
