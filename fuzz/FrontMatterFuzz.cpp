// Any bytes as a card's file, and as a value of its front matter.
#include "Property.h"
#include "server/Store/Card.h"

using namespace quillstead;
using namespace quillstead::server;

namespace {

void requireReadBack(const std::string& value) {
  std::string text = "---\nkey: ";
  text.append(FrontMatter::written(value)).append("\n---\nbody\n");
  const FrontMatter read = FrontMatter::parse(text);
  Fuzz::require(read.values("key") == std::vector<std::string>{value}, "a value is read back");
  Fuzz::require(read.rest == "body\n", "what is written stays within the front matter");
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text = Text::repaired(std::string(Fuzz::bytes(data, size)));
  const FrontMatter read = FrontMatter::parse(text);
  Fuzz::require(std::string_view(text).ends_with(read.rest), "the rest is the end of the text");
  for (const auto& [key, values] : read.fields) {
    Fuzz::require(key.find('\n') == std::string::npos, "a key is one line");
    for (const std::string& value : values) {
      Fuzz::require(value.find('\n') == std::string::npos, "a value is one line");
    }
  }

  std::string value = text;
  std::erase_if(value, [](char each) { return each == '\n' || each == '\r'; });
  if (!Text::isBlank(value)) requireReadBack(std::string(Text::trimmed(value)));
  return 0;
}
