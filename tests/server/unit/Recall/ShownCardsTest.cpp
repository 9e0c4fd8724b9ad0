#include "server/Recall/Recall.h"
#include "server/helpers/MemoryStage.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace quillstead::server::test {

namespace {

class ShownCardsTest : public ::testing::Test {
 protected:
  ShownCardsTest() {
    for (const std::string& entry : stage.environment()) entries_.push_back(entry.c_str());
    entries_.push_back(nullptr);
  }

  /// A session of its own for each number.
  [[nodiscard]] SessionMemory session(int number) const {
    const SessionMemory::Caller caller{.sessionID = std::to_string(number), .transcriptPath = {}};
    return *SessionMemory::of(caller, OS::Environment(entries_.data()));
  }

  [[nodiscard]] Scope scope() const {
    return {.personal = Store{.kind = Store::Kind::personal, .root = stage.path("store")},
            .project = Store{.kind = Store::Kind::project, .root = stage.path("other")}};
  }

  static Recall::ShownCard card(const std::string& name) {
    return {.place = {.store = Store::Kind::personal, .fileName = name}, .text = "text"};
  }

  MemoryStage stage;

 private:
  std::vector<const char*> entries_;
};

TEST_F(ShownCardsTest, AreThoseThatSurelyFittedBesideTheRules) {
  Recall::Block block = Recall::fenced({"the first card", "the second"});
  block.cards = {card("a.md"), card("b.md")};
  const std::size_t both = block.text.size();
  const std::size_t one = both - block.spans[1];
  int number = 0;
  for (const std::size_t room : {both, both - 1, one, one - 1, std::size_t{0}}) {
    {
      SessionMemory noted = session(++number);
      noted.pointerShown(room);
      ShownCards::note(block, noted, scope());
    }
    const SessionMemory kept = session(number);
    EXPECT_EQ(kept.knowsPlace(stage.path("store") + "/a.md"), room >= one) << room;
    EXPECT_EQ(kept.knowsPlace(stage.path("store") + "/b.md"), room >= both) << room;
  }
}

TEST_F(ShownCardsTest, AreLeftOutOfTheirStoreOnly) {
  const std::vector<CardPlace> all{{.store = Store::Kind::personal, .fileName = "a.md"},
                                   {.store = Store::Kind::project, .fileName = "a.md"},
                                   {.store = Store::Kind::personal, .fileName = "b.md"}};
  for (const char* const file : {"store/memory/a.md", "other/memory/a.md", "store/memory/b.md"}) {
    stage.write(file, "text");
  }
  {
    SessionMemory memory = session(1);
    memory.cardShown(stage.path("store") + "/a.md", "text");
    memory.keep();
  }
  stage.letTimePass(std::chrono::minutes(1));
  std::vector<CardPlace> places = all;
  ShownCards::remove(places, session(1), scope());
  ASSERT_EQ(places.size(), 2U);
  EXPECT_EQ(places[0].store, Store::Kind::project);
  EXPECT_EQ(places[1].fileName, "b.md");

  stage.write("store/memory/a.md", "changed");
  places = all;
  ShownCards::remove(places, session(1), scope());
  EXPECT_EQ(places.size(), 3U);
}

}  // namespace

}  // namespace quillstead::server::test
