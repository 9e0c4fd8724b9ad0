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

namespace quillstead {
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
  const JSON::Value* timeout;
};

std::vector<std::string> wordsOf(const JSON::Object& entry) {
  std::vector<std::string> words;
  std::istringstream command(*JSON::textOf(entry.find("command")));
  for (std::string word; command >> word;) words.push_back(word);
  if (const JSON::Array* arguments = JSON::arrayOf(entry.find("args"))) {
    for (const JSON::Value& argument : *arguments) words.push_back(*argument.text());
  }
  return words;
}

void collect(const std::string& event, const std::optional<std::string>& matcher,
             const JSON::Object& entry, std::vector<Entry>& entries) {
  std::optional<std::string> ownMatcher = matcher;
  if (const std::string* text = JSON::textOf(entry.find("matcher"))) ownMatcher = *text;
  if (entry.find("command")) {
    entries.push_back({.event = event,
                       .matcher = ownMatcher,
                       .words = wordsOf(entry),
                       .timeout = entry.find("timeout")});
  }
  if (const JSON::Array* inner = JSON::arrayOf(entry.find("hooks"))) {
    for (const JSON::Value& hook : *inner) collect(event, ownMatcher, *hook.object(), entries);
  }
}

std::vector<Entry> entriesOf(const JSON::Object& settings) {
  std::vector<Entry> entries;
  const JSON::Object* events = JSON::objectOf(settings.find("hooks"));
  if (!events) return entries;
  for (const JSON::Member& event : events->members()) {
    for (const JSON::Value& entry : *event.value.array()) {
      collect(event.key, std::nullopt, *entry.object(), entries);
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
    ASSERT_TRUE(settings && settings->object()) << snippet.document << ":\n" << snippet.text;
    for (Entry& entry : entriesOf(*settings->object())) {
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
    ASSERT_TRUE(settings && settings->object());
    std::vector<Entry> entries = entriesOf(*settings->object());
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
      ASSERT_NE(entry.timeout, nullptr);
      ASSERT_NE(entry.timeout->number(), nullptr);
      EXPECT_GE(entry.timeout->number()->integer().value_or(0), 3);  // seconds; the hook takes 2.5
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
    ASSERT_TRUE(settings && settings->object());
    for (const Entry& entry : entriesOf(*settings->object())) {
      if (entry.event != "preToolUse") continue;
      EXPECT_EQ(entry.matcher, expected);
      ++found;
    }
  }
  EXPECT_EQ(found, 1);
}

}  // namespace
}  // namespace quillstead
