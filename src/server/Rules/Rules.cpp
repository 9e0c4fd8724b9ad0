#include "server/Rules/Rules.h"

#include "server/Shown.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Lines.h"
#include "support/Text/Text.h"

#include <variant>

namespace quillstead::server::Rules {

namespace {

/// It ends in a colon, so that it is not cut from the rules it is about.
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

}  // namespace quillstead::server::Rules
