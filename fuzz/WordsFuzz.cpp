// Any text as a card's and as a prompt: its words can be taken by the index.
#include "Property.h"
#include "server/Index/CardSearch.h"
#include "server/Index/IndexTables.h"
#include "server/Index/WordSplitter.h"
#include "server/Index/Words.h"
#include "server/Recall/Passage.h"

#include <set>

using namespace quillstead;
using namespace quillstead::server;

namespace {

/// An index with a card in it.
Database index() {
  Database made = Database::inMemory();
  IndexTables::create(made);
  const Card card{.title = "Title", .tags = {"tag"}, .body = "some body"};
  IndexTables::CardCounts counts{};
  IndexTables::Writer(made, counts)
      .add({.store = Store::Kind::project, .name = "a.md", .stamp = {}}, &card, 1);
  return made;
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view text = Fuzz::bytes(data, size);
  WordSplitter::split(text, [](const WordSplitter::Word& word) {
    Fuzz::require(!word.text.empty(), "a word has letters");
    Fuzz::require(Fuzz::isUTF8(word.text), "a word is UTF-8");
    Fuzz::require(word.text.find_first_of(" \"*\n") == std::string_view::npos, "a word is one");
  });
  Fuzz::require(Fuzz::isUTF8(Words::indexed(text)), "what is indexed is UTF-8");

  const std::vector<Words::SearchTerm> terms = Words::searchTerms(text);
  std::set<std::string> seen;
  for (const Words::SearchTerm& term : terms) {
    Fuzz::require(term.says > 0 && term.says <= 1, "a term says something, at most 1");
    Fuzz::require(seen.insert(term.word).second, "each term is there once");
  }
  CommonTerms common;
  // One index for all inputs would keep something of each search. The fuzzer takes that for a leak,
  // and to look for one takes longer than to make an index.
  Database database = index();
  Fuzz::require(CardSearch::find(database, terms, 1, 8, common).has_value(),
                "any prompt can be searched for");

  const std::string repaired = Text::repaired(std::string(text));
  for (const std::size_t limit : {1U, 40U, 400U}) {
    const std::string_view passage = Passage::best(repaired, terms, limit);
    Fuzz::require(passage.size() <= limit, "a passage keeps to its limit");
    Fuzz::require(Fuzz::isUTF8(passage), "a passage takes no character apart");
  }
  return 0;
}
