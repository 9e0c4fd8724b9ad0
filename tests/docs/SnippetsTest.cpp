// Every configuration snippet in the documents parses, and what it starts is something the hook
// understands.
#include "hook/Harness/CommandFlag.h"
#include "hook/Harness/HarnessFlag.h"
#include "hook/Harness/SlotFlag.h"
#include "hook/ParentTag.h"
#include "hook/SessionStamp.h"
#include "support/JSON/Reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace quillstead::hook {
namespace {

struct Snippet {
  std::string document;
  std::string text;
};

std::vector<Snippet> snippetsOf(const std::string& document) {
  std::ifstream file(std::string(QUILLSTEAD_SOURCE_DIR) + "/" + document);
  EXPECT_TRUE(file.is_open()) << document;
  std::vector<Snippet> snippets;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (inside && line == "```") {
      inside = false;
    } else if (inside) {
      snippets.back().text += line + "\n";
    } else if (line == "```json") {
      inside = true;
      snippets.push_back({.document = document, .text = {}});
    }
  }
  EXPECT_FALSE(inside) << "unfinished snippet in " << document;
  return snippets;
}

std::vector<Snippet> allSnippets() {
  std::vector<Snippet> all;
  for (const char* document : {"README.md", "docs/harnesses.md"}) {
    for (Snippet& snippet : snippetsOf(document)) all.push_back(std::move(snippet));
  }
  return all;
}

/// One hook entry, with its command split into words.
struct Entry {
  std::string event;
  std::optional<std::string> matcher;
  std::vector<std::string> words;
  std::optional<std::int64_t> timeout;  ///< in seconds
};

std::vector<std::string> wordsOf(JSON::ObjectView entry) {
  std::vector<std::string> words;
  std::istringstream command(std::string(*entry.find("command").string()));
  for (std::string word; command >> word;) words.push_back(word);
  for (const JSON::View argument : entry.find("args").elements()) {
    words.emplace_back(*argument.string());
  }
  return words;
}

void collect(const std::string& event, const std::optional<std::string>& matcher,
             JSON::ObjectView entry, std::vector<Entry>& entries) {
  std::optional<std::string> ownMatcher = matcher;
  if (const auto text = entry.find("matcher").string()) ownMatcher = *text;
  if (entry.find("command").exists()) {
    const auto timeout = entry.find("timeout").number();
    entries.push_back({.event = event,
                       .matcher = ownMatcher,
                       .words = wordsOf(entry),
                       .timeout = timeout ? timeout->integer() : std::nullopt});
  }
  for (const JSON::View hook : entry.find("hooks").elements()) {
    collect(event, ownMatcher, *hook.object(), entries);
  }
}

std::vector<Entry> entriesOf(JSON::ObjectView settings) {
  std::vector<Entry> entries;
  const auto events = settings.find("hooks").object();
  if (!events) return entries;
  for (const JSON::MemberView& event : events->members()) {
    for (const JSON::View entry : event.value.elements()) {
      collect(std::string(event.key), std::nullopt, *entry.object(), entries);
    }
  }
  return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size());
  for (std::string& word : words) pointers.push_back(word.data());
  return pointers;
}

TEST(Snippets, AreThereForEveryHarnessWithSettingsOfItsOwn) {
  std::set<std::string_view> harnesses;
  for (const Snippet& snippet : allSnippets()) {
    const auto settings = JSON::read(snippet.text);
    ASSERT_TRUE(settings && settings->root().object()) << snippet.document << ":\n" << snippet.text;
    for (Entry& entry : entriesOf(settings->object())) {
      const auto outcome = HarnessFlag::parse(pointersTo(entry.words));
      const auto* found = std::get_if<HarnessFlag::Found>(&outcome);
      ASSERT_NE(found, nullptr) << snippet.text;
      harnesses.insert(found->adapter.name());
    }
  }
  EXPECT_EQ(harnesses, (std::set<std::string_view>{"claude-code", "codex", "cursor"}));
}

TEST(Snippets, StartTheHookWithASlotThatFitsTheEvent) {
  for (const Snippet& snippet : allSnippets()) {
    SCOPED_TRACE(snippet.document + ":\n" + snippet.text);
    const auto settings = JSON::read(snippet.text);
    ASSERT_TRUE(settings && settings->root().object());
    std::vector<Entry> entries = entriesOf(settings->object());
    ASSERT_FALSE(entries.empty());
    for (Entry& entry : entries) {
      const std::vector<char*> arguments = pointersTo(entry.words);
      const auto name = CommandFlag::value("--slot", arguments);
      const auto slot = name ? SlotFlag::named(*name) : std::nullopt;
      EXPECT_EQ(name.has_value(), slot.has_value());
      const bool isToolEvent = entry.event == "PreToolUse" || entry.event == "preToolUse";
      const bool isPromptEvent =
          entry.event == "UserPromptSubmit" || entry.event == "beforeSubmitPrompt";
      EXPECT_NE(isToolEvent, isPromptEvent) << entry.event;
      EXPECT_EQ(slot == HookSlot::pretool, isToolEvent);
      EXPECT_EQ(entry.matcher.has_value(), isToolEvent);
      EXPECT_EQ(entry.words.front().find("/abs/quillstead-hook") != std::string::npos, true);
      EXPECT_GE(entry.timeout.value_or(0), 3);  // the hook takes 2.5
    }
  }
}

TEST(Snippets, MatchEveryToolThatIsStampedInCursor) {
  std::string expected;
  for (const std::string_view tool : SessionStamp::tools) expected.append(tool).append("|");
  expected += ParentTag::tool;
  int found = 0;
  for (const Snippet& snippet : allSnippets()) {
    const auto settings = JSON::read(snippet.text);
    ASSERT_TRUE(settings && settings->root().object());
    for (const Entry& entry : entriesOf(settings->object())) {
      if (entry.event != "preToolUse") continue;
      EXPECT_EQ(entry.matcher, expected);
      ++found;
    }
  }
  EXPECT_EQ(found, 1);
}

}  // namespace
}  // namespace quillstead::hook
