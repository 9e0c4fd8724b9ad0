#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillstead::JSON {
namespace {

using namespace std::string_view_literals;
using unit::encoded;

struct WellFormed {
  const char* name;
  std::string_view bytes;
  std::string_view written;  ///< compact, slashes plain
};

const std::vector<WellFormed> wellFormed{
    {"an empty array", "[]", "[]"},
    {"an empty object", "{}", "{}"},
    {"blanks in empty containers", "[ ] ", "[]"},
    {"every white space", " \t\r\n{ \t\r\n\"a\" \t\r\n: \t\r\n[ \t\r\n1 \t\r\n, 2 ] \t\r\n} \t\r\n",
     R"({"a":[1,2]})"},
    {"the three words", "[null,true,false]", "[null,true,false]"},
    {"a lonely null", "[null]", "[null]"},
    {"containers side by side", "[[],{},[[]],{\"a\":{}}]", "[[],{},[[]],{\"a\":{}}]"},
    {"an empty key", R"({"":0})", R"({"":0})"},
    {"a key with escapes", R"({"\u0061\n":0})", R"({"a\n":0})"},
    {"a key with a NUL", R"({"a\u0000b":0})", R"({"a\u0000b":0})"},
    {"a repeated key", R"({"a":1,"b":2,"a":3})", R"({"a":3,"b":2})"},
    {"a key repeated by an escape", R"({"a":1,"\u0061":3})", R"({"a":3})"},
    {"zero", "[0]", "[0]"},
    {"minus zero", "[-0]", "[-0]"},
    {"one digit", "[7]", "[7]"},
    {"negative", "[-123]", "[-123]"},
    {"blanks around a number", "[ 4 ]", "[4]"},
    {"a fraction", "[0.5]", "[0.5]"},
    {"a fraction of zeros", "[1.000]", "[1.000]"},
    {"minus a fraction of nothing", "[-0.0]", "[-0.0]"},
    {"an exponent", "[1e2]", "[1e2]"},
    {"a capital exponent", "[1E2]", "[1E2]"},
    {"a signed exponent", "[1e+2,1e-2,1E+2,1E-2]", "[1e+2,1e-2,1E+2,1E-2]"},
    {"zero with an exponent", "[0e1,0e+1,0E-1,0.0e0]", "[0e1,0e+1,0E-1,0.0e0]"},
    {"leading zeros in an exponent", "[1e007]", "[1e007]"},
    {"fraction and exponent", "[123.456e78]", "[123.456e78]"},
    {"beyond a double", "[1e400,-1e400]", "[1e400,-1e400]"},
    {"below a double", "[123e-10000000]", "[123e-10000000]"},
    {"beyond 64 bits", "[18446744073709551616,-9223372036854775809]",
     "[18446744073709551616,-9223372036854775809]"},
    {"thirty digits", "[123456789012345678901234567890]", "[123456789012345678901234567890]"},
    {"a long fraction", "[0.1234567890123456789012345678901234567890]",
     "[0.1234567890123456789012345678901234567890]"},
    {"the largest exponents of 31 bits", "[1e2147483646,1e-2147483646]",
     "[1e2147483646,1e-2147483646]"},
    {"exponents beyond 64 bits", "[1e18446744073709551616,-0E-9999999999999999999999]",
     "[1e18446744073709551616,-0E-9999999999999999999999]"},
    {"an empty text", R"([""])", R"([""])"},
    {"every short escape", R"(["\"\\\/\b\f\n\r\t"])", R"(["\"\\/\b\f\n\r\t"])"},
    {"an escape that was not needed", R"(["\u0061\u30af\u30EA\u30b9"])",
     "[\"a\xE3\x82\xAF\xE3\x83\xAA\xE3\x82\xB9\"]"},
    {"an escaped NUL", R"(["\u0000"])", R"(["\u0000"])"},
    {"escaped control characters", R"(["\u0001\u001f\u007F"])", "[\"\\u0001\\u001f\x7F\"]"},
    {"an escaped backslash before u", R"(["\\u0000"])", R"(["\\u0000"])"},
    {"an escaped quote and slash", R"(["\u0022\u005c\u002F"])", R"(["\"\\/"])"},
    {"an escaped pair", R"(["\uD834\uDD1E"])", "[\"\xF0\x9D\x84\x9E\"]"},
    {"the last escaped pair", R"(["\udbff\udfff"])", "[\"\xF4\x8F\xBF\xBF\"]"},
    {"the first escaped pair", R"(["\uD800\uDC00"])", "[\"\xF0\x90\x80\x80\"]"},
    {"escaped noncharacters", R"(["\uFFFE\uFFFF\uFDD0"])",
     "[\"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xB7\x90\"]"},
    {"escapes beside the surrogates", R"(["\uD7FF\uE000"])", "[\"\xED\x9F\xBF\xEE\x80\x80\"]"},
    {"a raw DEL", "[\"\x7F\"]", "[\"\x7F\"]"},
    {"raw characters of 2, 3 and 4 bytes", "[\"\xC2\x80\xDF\xBF\xE0\xA0\x80\xF0\x90\x80\x80\"]",
     "[\"\xC2\x80\xDF\xBF\xE0\xA0\x80\xF0\x90\x80\x80\"]"},
    {"raw line separators", "[\"\xE2\x80\xA8\xE2\x80\xA9\"]", "[\"\xE2\x80\xA8\xE2\x80\xA9\"]"},
    {"raw noncharacters", "[\"\xEF\xBF\xBF\xF4\x8F\xBF\xBF\"]",
     "[\"\xEF\xBF\xBF\xF4\x8F\xBF\xBF\"]"},
    {"a byte order mark inside a string", "[\"\xEF\xBB\xBF\"]", "[\"\xEF\xBB\xBF\"]"},
    {"punctuation in a string", R"(["[]{},: \u002c"])", R"(["[]{},: ,"])"},
    {"words in a string", R"(["null true 1e5 //"])", R"(["null true 1e5 //"])"},
    {"a line feed at the end", "{\"a\":\"b\"}\n", R"({"a":"b"})"},
    {"a carriage return at the end", "[1]\r", "[1]"},
};

const std::vector<std::pair<const char*, std::string_view>> illFormed{
    {"nothing", ""},
    {"only white space", " \n"},
    {"only a byte order mark", "\xEF\xBB\xBF"},
    {"a top-level text", R"("text")"},
    {"a top-level number", "42"},
    {"a top-level true", "true"},
    {"a top-level false", "false"},
    {"a top-level null", "null"},
    {"two documents", "[][]"},
    {"two documents on two lines", "{}\n{}"},
    {"a bracket too many", "[]]"},
    {"a brace too many", "{}}"},
    {"a comma behind the document", "[],"},
    {"a letter behind the document", "[]x"},
    {"a NUL behind the document", "[]\0"sv},
    {"a byte order mark behind the document", "[]\xEF\xBB\xBF"},
    {"two byte order marks", "\xEF\xBB\xBF\xEF\xBB\xBF[]"},
    {"half a byte order mark", "\xEF\xBB[]"},
    {"a NUL before the document", "\0[]"sv},
    {"a form feed as white space", "[\f]"},
    {"a vertical tab as white space", "[\v]"},
    {"a no-break space as white space", "[\xC2\xA0]"},
    {"U+2060 as white space", "[\xE2\x81\xA0]"},
    {"U+2028 as white space", "[\xE2\x80\xA8]"},
    {"the wrong bracket", "[1}"},
    {"the wrong brace", "{\"a\":1]"},
    {"a comma at the end", "[1,]"},
    {"a comma at the start", "[,1]"},
    {"two commas", "[1,,2]"},
    {"only a comma", "[,]"},
    {"a colon for a comma", "[1:2]"},
    {"no comma", "[1 2]"},
    {"no comma between texts", R"(["a" "b"])"},
    {"a member's comma at the end", R"({"a":1,})"},
    {"two commas between members", R"({"a":1,,"b":2})"},
    {"no comma between members", R"({"a":1 "b":2})"},
    {"a comma for a colon", R"({"a",1})"},
    {"two colons", R"({"a"::1})"},
    {"no colon", R"({"a" 1})"},
    {"a key without a value", R"({"a"})"},
    {"a key with a colon only", R"({"a":})"},
    {"a value without a key", R"({:1})"},
    {"a number as key", R"({1:1})"},
    {"null as key", R"({null:1})"},
    {"a bare key", R"({a:1})"},
    {"a key in single quotes", R"({'a':1})"},
    {"a string in single quotes", R"(['a'])"},
    {"a block comment", R"([1/* c */])"},
    {"a line comment", "[1]// c\n"},
    {"a hash comment", "[1]# c\n"},
    {"capital words", "[True]"},
    {"a cut word", "[nul]"},
    {"a long word", "[nulls]"},
    {"words together", "[truefalse]"},
    {"undefined", "[undefined]"},
    {"not a number", "[NaN]"},
    {"minus not a number", "[-NaN]"},
    {"infinity", "[Infinity]"},
    {"minus infinity", "[-Infinity]"},
    {"infinity in short", "[-inf]"},
    {"a leading plus", "[+1]"},
    {"only a minus", "[-]"},
    {"two minuses", "[--1]"},
    {"a minus apart", "[- 1]"},
    {"a leading zero", "[01]"},
    {"a negative leading zero", "[-01]"},
    {"two zeros", "[00]"},
    {"a leading zero with a fraction", "[012.5]"},
    {"no digit before the point", "[.5]"},
    {"minus and no digit before the point", "[-.5]"},
    {"no digit behind the point", "[1.]"},
    {"no digit between point and exponent", "[1.e1]"},
    {"two points", "[1.2.3]"},
    {"an exponent without digits", "[1e]"},
    {"an exponent with only a sign", "[1e+]"},
    {"an exponent with two signs", "[1e+-1]"},
    {"two exponents", "[1e1e1]"},
    {"a fraction in the exponent", "[1e1.5]"},
    {"an exponent alone", "[e1]"},
    {"a hexadecimal number", "[0x1F]"},
    {"a letter in a number", "[1a]"},
    {"a number with a suffix", "[1L]"},
    {"digits in groups", "[1 000]"},
    {"digits with underscores", "[1_000]"},
    {"full-width digits", "[\xEF\xBC\x91]"},
    {"a raw line feed in a string", "[\"a\nb\"]"},
    {"a raw tab in a string", "[\"a\tb\"]"},
    {"a raw NUL in a string", "[\"a\0b\"]"sv},
    {"a raw control character in a string", "[\"\x1F\"]"},
    {"a raw line feed in a key", "{\"a\nb\":1}"},
    {"an unknown escape", R"(["\x41"])"},
    {"an escaped capital", R"(["\U0041"])"},
    {"an escaped single quote", R"(["\'"])"},
    {"an escaped digit", R"(["\0"])"},
    {"an escaped line feed", "[\"\\\n\"]"},
    {"an escaped raw character", "[\"\\\xC3\xA9\"]"},
    {"three hexadecimal digits", R"(["\u004"])"},
    {"a letter that is no hexadecimal digit", R"(["\u00G0"])"},
    {"a blank in the digits", R"(["\u 041"])"},
    {"a sign in the digits", R"(["\u+041"])"},
    {"braces around the digits", R"(["\u{41}"])"},
    {"a high surrogate alone", R"(["\uD834"])"},
    {"a high surrogate before text", R"(["\uD834abc"])"},
    {"a high surrogate before an escape", R"(["\uD834\n"])"},
    {"a high surrogate before a letter's escape", R"(["\uD834\u0041"])"},
    {"two high surrogates", R"(["\uD834\uD834\uDD1E"])"},
    {"a high surrogate and a cut escape", R"(["\uD834\uDD"])"},
    {"a high surrogate and a backslash", R"(["\uD834\"])"},
    {"a low surrogate alone", R"(["\uDD1E"])"},
    {"a low surrogate behind text", R"(["abc\uDD1E"])"},
    {"surrogates in the wrong order", R"(["\uDD1E\uD834"])"},
    {"a lone surrogate in a key", R"({"\uD834":1})"},
    {"a continuation byte alone", "[\"\x80\"]"},
    {"a lead byte alone", "[\"\xC3\"]"},
    {"a lead byte before a letter", "[\"\xC3(\"]"},
    {"3 bytes cut after 1", "[\"\xE2\"]"},
    {"3 bytes cut after 2", "[\"\xE2\x82\"]"},
    {"4 bytes cut after 1", "[\"\xF0\"]"},
    {"4 bytes cut after 3", "[\"\xF0\x9D\x84\"]"},
    {"a slash in 2 bytes", "[\"\xC0\xAF\"]"},
    {"a NUL in 2 bytes", "[\"\xC0\x80\"]"},
    {"the last overlong 2 bytes", "[\"\xC1\xBF\"]"},
    {"the last overlong 3 bytes", "[\"\xE0\x9F\xBF\"]"},
    {"the last overlong 4 bytes", "[\"\xF0\x8F\xBF\xBF\"]"},
    {"an encoded high surrogate", "[\"\xED\xA0\x80\"]"},
    {"an encoded low surrogate", "[\"\xED\xBF\xBF\"]"},
    {"an encoded pair of surrogates", "[\"\xED\xA0\xB4\xED\xB4\x9E\"]"},
    {"beyond the last character", "[\"\xF4\x90\x80\x80\"]"},
    {"a lead byte of 5", "[\"\xF8\x88\x80\x80\x80\"]"},
    {"a byte FE", "[\"\xFE\"]"},
    {"a byte FF", "[\"\xFF\"]"},
    {"Latin-1", "[\"caf\xE9\"]"},
    {"invalid UTF-8 in a key", "{\"\xFF\":1}"},
    {"invalid UTF-8 outside texts", "[\xFF]"},
    {"invalid UTF-8 behind the document", "[]\xFF"},
    {"a bare backslash", "[\\]"},
    {"a bare escape", R"([\u0041])"},
    {"a star", "[*]"},
    {"an angle bracket", "<[]>"},
};

TEST(Reader, ReadsEveryWellFormedDocument) {
  for (const WellFormed& one : wellFormed) {
    SCOPED_TRACE(one.name);
    const std::optional<Document> value = read(one.bytes);
    ASSERT_TRUE(value);
    EXPECT_EQ(write(value->root(), Slashes::plain), one.written);
  }
}

TEST(Reader, RefusesEveryIllFormedDocument) {
  for (const auto& [name, bytes] : illFormed) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(read(bytes));
  }
}

TEST(Reader, TakesEightEscapesOfOneLetterAndNoOther) {
  for (int byte = 0; byte < 256; ++byte) {
    const auto letter = static_cast<char>(byte);
    const bool isEscape = R"("\/bfnrt)"sv.find(letter) != std::string_view::npos;
    EXPECT_EQ(read("[\"\\" + std::string(1, letter) + "\"]").has_value(), isEscape) << byte;
  }
}

TEST(Reader, RefusesEveryDocumentThatIsCutOff) {
  for (const WellFormed& one : wellFormed) {
    SCOPED_TRACE(one.name);
    const std::size_t end = one.bytes.find_last_of("]}");
    for (std::size_t length = 0; length <= end; ++length) {
      EXPECT_FALSE(read(one.bytes.substr(0, length))) << "cut after " << length;
    }
  }
}

TEST(Reader, RefusesEveryDocumentWithMoreBehindIt) {
  for (const WellFormed& one : wellFormed) {
    for (const std::string_view more : {"x"sv, "]"sv, "0"sv, ","sv, "\""sv, "\0"sv, "{}"sv}) {
      SCOPED_TRACE(one.name);
      EXPECT_FALSE(read(std::string(one.bytes) + std::string(more))) << "with " << more;
    }
  }
}

TEST(Reader, PassesOverAByteOrderMark) {
  for (const WellFormed& one : wellFormed) {
    SCOPED_TRACE(one.name);
    const std::optional<Document> value = read("\xEF\xBB\xBF" + std::string(one.bytes));
    ASSERT_TRUE(value);
    EXPECT_EQ(write(value->root(), Slashes::plain), one.written);
  }
}

TEST(Reader, ReadsTheWiderEncodingsInBothByteOrdersWithAndWithoutMark) {
  const std::u32string_view document = U"{\"k\u00E9y\": [\"\u20AC\U0001F600\", 1e5, {}]}";
  const std::string expected = "{\"k\xC3\xA9y\":[\"\xE2\x82\xAC\xF0\x9F\x98\x80\",1e5,{}]}";
  for (const Encoding encoding : {Encoding::utf16LittleEndian, Encoding::utf16BigEndian,
                                  Encoding::utf32LittleEndian, Encoding::utf32BigEndian}) {
    for (const bool marked : {false, true}) {
      SCOPED_TRACE(static_cast<int>(encoding));
      const std::string bytes = encoded(document, encoding, marked);
      const std::optional<Document> value = read(bytes);
      ASSERT_TRUE(value);
      EXPECT_EQ(write(value->root(), Slashes::plain), expected);
      for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(read(std::string_view(bytes).substr(0, length))) << "cut after " << length;
      }
    }
  }
}

TEST(Reader, RefusesALoneSurrogateAlsoInUTF16) {
  EXPECT_TRUE(read("[\0\"\0\x3D\xD8\x00\xDE\"\0]\0"sv));
  EXPECT_FALSE(read("[\0\"\0\x3D\xD8\"\0]\0"sv));
  EXPECT_FALSE(read("[\0\"\0\x00\xDE\"\0]\0"sv));
}

TEST(Reader, RefusesATopLevelScalarInEveryEncoding) {
  for (const Encoding encoding : {Encoding::utf16LittleEndian, Encoding::utf16BigEndian,
                                  Encoding::utf32LittleEndian, Encoding::utf32BigEndian}) {
    SCOPED_TRACE(static_cast<int>(encoding));
    EXPECT_FALSE(read(encoded(U"12", encoding)));
    EXPECT_FALSE(read(encoded(U"\"a\"", encoding, true)));
  }
}

}  // namespace
}  // namespace quillstead::JSON
