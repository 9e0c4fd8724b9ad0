// Any text as a card's file: what is shown of it comes out of it.
#include "Property.h"
#include "server/Store/Card.h"
#include "support/Text/Text.h"

using namespace quillstead;
using namespace quillstead::server;

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text = Text::repaired(std::string(Fuzz::bytes(data, size)));
  const Card card = Card::parse(text, "name.md");
  Fuzz::require(Fuzz::isOneLine(card.title), "a title is one line");
  Fuzz::require(card.title == "name" || Text::onOneLine(text).find(card.title) != std::string::npos,
                "a title stands in the file or is its name");
  Fuzz::require(card.body.size() <= text.size(), "a body is a part of the file");
  Fuzz::require(Fuzz::isUTF8(card.title) && Fuzz::isUTF8(card.body), "a card is UTF-8");
  for (const std::string& tag : card.tags) Fuzz::require(Fuzz::isUTF8(tag), "a tag is UTF-8");
  return 0;
}
