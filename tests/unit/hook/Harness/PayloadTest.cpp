#include "hook/Harness/Payload.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

namespace quillstead::hook::Payload {
namespace {

using unit::documentIn;
using unit::encoded;

TEST(Payload, IsOneJSONObject) {
  EXPECT_TRUE(read("{}"));
  EXPECT_TRUE(read(" {\"a\": 1} \n"));
  for (const char* none :
       {"", "[]", "[{}]", "\"text\"", "1", "null", "{", "{}{}", "{} x", "{a:1}"}) {
    EXPECT_FALSE(read(none)) << none;
  }
}

TEST(Payload, IsReadInEveryUnicodeEncoding) {
  using JSON::Encoding;
  for (const Encoding encoding :
       {Encoding::utf8, Encoding::utf16LittleEndian, Encoding::utf16BigEndian,
        Encoding::utf32LittleEndian, Encoding::utf32BigEndian}) {
    for (const bool marked : {false, true}) {
      const auto payload = read(encoded(U"{\"prompt\":\"\u20AC\"}", encoding, marked));
      ASSERT_TRUE(payload);
      EXPECT_EQ(prompt(payload->object()), "\xE2\x82\xAC");
    }
  }
}

TEST(Payload, GivesThePromptExactlyAsItIs) {
  EXPECT_EQ(prompt(documentIn(R"({"prompt":"  hi \n"})").object()), "  hi \n");
  EXPECT_EQ(prompt(documentIn(R"({"prompt":"  "})").object()), "  ");
  EXPECT_EQ(prompt(documentIn(R"({"prompt":"a","prompt":"b"})").object()), "b");
}

TEST(Payload, GivesAnEmptyPromptWhenThereIsNoText) {
  for (const char* payload : {"{}", R"({"prompt":""})", R"({"prompt":null})", R"({"prompt":42})",
                              R"({"prompt":true})", R"({"prompt":["a"]})", R"({"prompt":{"a":1}})",
                              R"({"Prompt":"a"})", R"({"prompt":"a","prompt":null})"}) {
    EXPECT_EQ(prompt(documentIn(payload).object()), "") << payload;
  }
}

TEST(Payload, KeepsATextThatIsNotBlankUntrimmed) {
  const JSON::Document document = documentIn(R"({"k":" a ","z":"\u200b","f":"\ufeff"})");
  const JSON::ObjectView payload = document.object();
  EXPECT_EQ(nonBlank(payload, "k"), " a ");
  EXPECT_EQ(nonBlank(payload, "z"), "\xE2\x80\x8B");
  EXPECT_EQ(nonBlank(payload, "f"), "\xEF\xBB\xBF");
  EXPECT_EQ(nonBlank(payload.find("k")), " a ");
}

TEST(Payload, TakesEverythingElseForAbsent) {
  for (const char* value : {R"("")", R"("  ")", R"("\r\n\t")", R"("\u00a0\u2028\u3000")", "null",
                            "0", "1.5", "true", "false", "[]", R"(["a"])", "{}", R"({"a":"b"})"}) {
    const JSON::Document payload = documentIn(std::string(R"({"k":)") + value + "}");
    EXPECT_EQ(nonBlank(payload.object(), "k"), std::nullopt) << value;
  }
  EXPECT_EQ(nonBlank(JSON::ObjectView(), "k"), std::nullopt);
  EXPECT_EQ(nonBlank(JSON::View()), std::nullopt);
}

}  // namespace
}  // namespace quillstead::hook::Payload
