#include "server/Rules/Rules.h"

#include "server/Markdown/Markdown.h"
#include "server/Shown.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Text.h"

#include <variant>

namespace quillstead::server::Rules {

namespace {

/// It ends in a colon, so that cutting never separates it from the rules that follow.
constexpr std::string_view border =
    "From here on, these are not the user's own rules but those in this project's files:";

std::string readOf(const Store& store) {
  const auto read = StoreFiles::readRules(store);
  if (const auto* file = std::get_if<StoreFiles::FileText>(&read)) {
    std::string rules = Text::withLineFeeds(Text::trimmed(file->text));
    if (store.kind == Store::Kind::personal || rules.empty()) return rules;
    return std::string(border) + "\n\n" + rules;
  }
  const auto reason = std::get<StoreFiles::NoText>(read);
  if (reason == StoreFiles::NoText::missing) return {};
  return "(The rules in " + store.root +
         "/rules.md were left out: " + std::string(StoreFiles::explained(reason)) + ".)";
}

bool isIndented(std::string_view line) { return line.starts_with(' ') || line.starts_with('\t'); }

/// What was found in the lines so far.
struct Before {
  std::size_t end = 0;     ///< where the last line that is not blank ended
  bool blankLine = false;  ///< a blank line came after it
  bool leadsOn = true;     ///< that line belongs with what follows
};

bool beginsRule(std::string_view line, const Before& before) {
  return Markdown::isListItem(line) || Markdown::heading(line).has_value() ||
         (before.blankLine && !isIndented(line));
}

}  // namespace

std::string read(const Scope& scope) {
  std::string all;
  for (const Store& store : scope.stores()) {
    const std::string rules = readOf(store);
    if (!all.empty() && !rules.empty()) all += "\n\n";
    all += rules;
  }
  return Shown::text(all);
}

std::vector<std::size_t> borders(std::string_view text) {
  std::vector<std::size_t> found;
  Before before;
  Markdown::CodeFence code;
  bool inCode = false;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = Text::takeLine(rest);
    const bool wasInCode = inCode;
    inCode = code.covers(line);
    if (Text::isBlank(line)) {
      before.blankLine = true;
      continue;
    }
    const bool mayBegin = !(wasInCode && inCode) && !before.leadsOn;
    if (mayBegin && beginsRule(line, before)) found.push_back(before.end);
    const std::string_view trimmed = Text::trimmed(line);
    before = {.end = static_cast<std::size_t>(line.data() + line.size() - text.data()),
              .blankLine = false,
              .leadsOn = !inCode && (Markdown::heading(line) || trimmed.ends_with(':'))};
  }
  if (before.end > 0) found.push_back(before.end);
  return found;
}

}  // namespace quillstead::server::Rules
