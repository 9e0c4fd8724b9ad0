#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillstead::JSON {
namespace {

using namespace std::string_view_literals;

struct TextCase {
  const char* name;
  std::string_view text;
  std::string_view written;
};

TEST(Writer, WritesEveryKindCompactly) {
  const Value value = objectOf({{"null", nullptr},
                                {"words", Array{true, false}},
                                {"number", -5},
                                {"text", "a b"},
                                {"empty", Array{Object(), Array(), ""}}});
  EXPECT_EQ(write(value, Slashes::plain),
            R"({"null":null,"words":[true,false],"number":-5,"text":"a b","empty":[{},[],""]})");
}

TEST(Writer, WritesScalarsToo) {
  EXPECT_EQ(write(nullptr, Slashes::plain), "null");
  EXPECT_EQ(write("a", Slashes::plain), R"("a")");
  EXPECT_EQ(write(0, Slashes::plain), "0");
}

TEST(Writer, EscapesWhatJSONRequiresAndNothingElse) {
  for (const TextCase& one : {
           TextCase{"a quote", "a\"b", R"("a\"b")"},
           TextCase{"a backslash", "a\\b", R"("a\\b")"},
           TextCase{"the short escapes", "\b\f\n\r\t", R"("\b\f\n\r\t")"},
           TextCase{"NUL", "\0"sv, R"("\u0000")"},
           TextCase{"a control character", "\x1B[0m", R"("\u001b[0m")"},
           TextCase{"DEL", "\x7F", "\"\x7F\""},
           TextCase{"a line separator", "\xE2\x80\xA8", "\"\xE2\x80\xA8\""},
           TextCase{"characters of every length", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
                    "\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\""},
           TextCase{"markup", "<a href='x'>&amp;</a>", "\"<a href='x'>&amp;</a>\""},
       }) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(write(one.text, Slashes::plain), one.written);
  }
}

TEST(Writer, EscapesEveryControlCharacter) {
  for (char character = 0; character < 0x20; ++character) {
    SCOPED_TRACE(static_cast<int>(character));
    const std::string text(1, character);
    const std::string written = write(text, Slashes::plain);
    EXPECT_EQ(written[1], '\\');
    const Value readBack = unit::parsed("[" + written + "]");
    EXPECT_TRUE(unit::areSame(readBack, Array{text}));
  }
}

/// The plainest way to write a string of ASCII characters.
std::string escapedOneByOne(const std::string& text, bool slashesToo) {
  std::string written = "\"";
  for (const char character : text) {
    constexpr std::string_view escaped = "\b\f\n\r\t\"\\";
    constexpr std::string_view letters = "bfnrt\"\\";
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t at = escaped.find(character);
    if (at != std::string_view::npos) {
      written.append("\\") += letters[at];
    } else if (character < ' ') {
      written.append("\\u00").append(character < 0x10 ? "0" : "1") +=
          digits[static_cast<std::size_t>(character) % 16];
    } else {
      written.append(slashesToo && character == '/' ? "\\" : "") += character;
    }
  }
  return written + '"';
}

TEST(Writer, EscapesEveryCharacterInEveryPlaceAndCompany) {
  for (const char filler : {'a', '!', ' ', '\x1F', '#', '[', '\x7F', '\0', '/'}) {
    for (std::size_t size = 1; size <= 19; size += 3) {
      for (std::size_t place = 0; place < size; ++place) {
        for (int character = 0; character < 0x80; ++character) {
          std::string text(size, filler);
          text[place] = static_cast<char>(character);
          ASSERT_EQ(write(text, Slashes::plain), escapedOneByOne(text, false));
          ASSERT_EQ(write(text, Slashes::escaped), escapedOneByOne(text, true));
        }
      }
    }
  }
}

/// The sizes of texts around which the writer's buffer is full.
const std::vector<std::size_t> fillings{0,     1,     15,    16,    4'077, 4'078, 4'079, 4'080,
                                        4'081, 4'091, 4'092, 4'093, 4'094, 4'095, 4'096, 4'097};

std::string letters(std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char>('a' + i % 26);
  return text;
}

TEST(Writer, WritesTextsOfEverySizeAtEveryFilling) {
  for (const std::size_t filled : fillings) {
    for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 4095U, 4096U, 4097U, 8192U, 70'000U}) {
      const std::string start(filled, '.');
      const std::string text = letters(size);
      EXPECT_EQ(write(Array{start, text, "a"}, Slashes::plain),
                "[\"" + start + "\",\"" + text + "\",\"a\"]")
          << filled << ", " << size;
      EXPECT_EQ(write(Array{start, Value::number("1" + std::string(size, '0')), 5}, Slashes::plain),
                "[\"" + start + "\",1" + std::string(size, '0') + ",5]")
          << filled << ", " << size;
    }
  }
}

TEST(Writer, WritesEscapesAtEveryFilling) {
  for (const std::size_t filled : fillings) {
    const std::string text = letters(filled) + "\n\"\x01" + letters(filled) + "\\/";
    EXPECT_EQ(write(text, Slashes::escaped), escapedOneByOne(text, true)) << filled;
  }
}

TEST(Writer, WritesRunsOfEverySizeBetweenEscapes) {
  std::string text;
  for (std::size_t size = 0; size < 300; ++size) text += letters(size) + "\n" + letters(size) + "/";
  EXPECT_EQ(write(text, Slashes::escaped), escapedOneByOne(text, true));
}

TEST(Writer, GivesALargeDocumentRoomToGrow) {
  const Array pieces(5'000, std::string(1'000, '.'));
  const std::string document = write(pieces, Slashes::plain);
  EXPECT_EQ(document.size(), 5'000U * 1'003 + 1);
  EXPECT_GE(document.capacity(), 3 * document.size());
}

TEST(Writer, ReplacesAnInvalidByteInEveryPlace) {
  for (std::size_t size = 1; size <= 19; ++size) {
    for (std::size_t place = 0; place < size; ++place) {
      for (const char byte : {'\x80', '\xBF', '\xC3', '\xFF'}) {
        std::string text(size, 'a');
        text[place] = byte;
        const std::string expected =
            std::string(place, 'a') + "\xEF\xBF\xBD" + std::string(size - place - 1, 'a');
        ASSERT_EQ(write(text, Slashes::plain), "\"" + expected + "\"");
      }
    }
  }
}

TEST(Writer, WritesIntoTheMemoryOfATextThatIsNoLongerNeeded) {
  for (const std::string& reused : {std::string(), std::string("old"), std::string(10'000, 'x')}) {
    EXPECT_EQ(write(objectOf({{"a", Array{1, "b"}}}), Slashes::plain, reused), R"({"a":[1,"b"]})");
  }
  std::string large(1'000'000, 'x');
  const char* const memory = large.data();
  EXPECT_EQ(write("text", Slashes::plain, std::move(large)).data(), memory);
}

TEST(Writer, EscapesSlashesOnlyWhenAskedTo) {
  const Value value = objectOf({{"a/b", "</end>"}});
  EXPECT_EQ(write(value, Slashes::plain), R"({"a/b":"</end>"})");
  EXPECT_EQ(write(value, Slashes::escaped), R"({"a\/b":"<\/end>"})");
}

TEST(Writer, EscapesInKeysAsInTexts) {
  EXPECT_EQ(write(objectOf({{"a\n\"\x01", 1}}), Slashes::plain), R"({"a\n\"\u0001":1})");
}

TEST(Writer, ReplacesWhatIsNotUTF8) {
  for (const TextCase& one : {
           TextCase{"a continuation byte", "a\x80z", "\"a\xEF\xBF\xBDz\""},
           TextCase{"a cut character", "a\xE2\x82", "\"a\xEF\xBF\xBD\""},
           TextCase{"a cut character before a letter", "\xE2\x82z", "\"\xEF\xBF\xBDz\""},
           TextCase{"an overlong slash", "\xC0\xAF", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
           TextCase{"a surrogate", "\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
           TextCase{"bytes that never occur", "\xFE\xFF", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
           TextCase{"an invalid byte before an escape", "\xFF\n", "\"\xEF\xBF\xBD\\n\""},
       }) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(write(one.text, Slashes::plain), one.written);
  }
  EXPECT_EQ(write(objectOf({{"\xFF", 1}}), Slashes::plain), "{\"\xEF\xBF\xBD\":1}");
}

TEST(Writer, KeepsTheTextOfNumbersAndTheOrderOfMembers) {
  const std::string document =
      R"({"z":1.50E+01,"a":-0,"m":1e300,"b":[0.1,123456789012345678901234567890]})";
  EXPECT_EQ(write(unit::parsed(document), Slashes::plain), document);
}

TEST(Writer, WritesPartsOfADocumentLikeValuesOfItsOwn) {
  const std::string text = R"({"a/b":["<\/>",1.0,true,false,null,[],{}]})";
  const Document document = unit::documentIn(text);
  const Value whole = unit::parsed(text);
  for (const Slashes slashes : {Slashes::plain, Slashes::escaped}) {
    EXPECT_EQ(write(document.root(), slashes), write(whole, slashes));
    EXPECT_EQ(write(objectOf({{"part", document.root()}}), slashes),
              write(objectOf({{"part", whole}}), slashes));
  }
  EXPECT_EQ(write(View(), Slashes::plain), "null");
}

TEST(Writer, WritesJoinedStringsAsOne) {
  for (const auto& [first, second] :
       std::vector<std::pair<std::string, std::string>>{{"", ""},
                                                        {"a", ""},
                                                        {"", "b"},
                                                        {"a/\n", "\"\xC3\xA9"},
                                                        {std::string(5'000, 'x'), "\n\n[tag]"}}) {
    EXPECT_EQ(write(Array{JoinedString{first, second}}, Slashes::escaped),
              write(Array{first + second}, Slashes::escaped));
  }
}

TEST(Writer, WritesWhatReadsBackAsTheSameValue) {
  unit::ValueGenerator generator(20261116);
  for (int i = 0; i < 3000; ++i) {
    const Value value = Array{generator.value(5)};
    for (const Slashes slashes : {Slashes::plain, Slashes::escaped}) {
      const std::string written = write(value, slashes);
      const std::optional<Document> readBack = read(written);
      ASSERT_TRUE(readBack) << written;
      ASSERT_TRUE(unit::areSame(value, Value::copyOf(readBack->root()))) << written;
      ASSERT_EQ(write(readBack->root(), slashes), written);
    }
  }
}

}  // namespace
}  // namespace quillstead::JSON
