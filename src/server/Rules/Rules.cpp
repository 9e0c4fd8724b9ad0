#include "server/Rules/Rules.h"

#include "server/Fence.h"
#include "server/Store/Lines.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Text.h"

#include <variant>

namespace quillstead::Rules {

namespace {

std::string withLineFeeds(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    if (!result.empty()) result += '\n';
    result += takeLine(text);
  }
  return result;
}

std::string_view explained(StoreFiles::NoText reason) {
  switch (reason) {
    case StoreFiles::NoText::missing:
      return {};
    case StoreFiles::NoText::outsideStore:
      return "it is a symbolic link out of the store";
    case StoreFiles::NoText::notAFile:
      return "it is not a file";
    case StoreFiles::NoText::tooLarge:
      return "it is larger than 1 MiB";
    case StoreFiles::NoText::binary:
      return "it is not text";
    case StoreFiles::NoText::unreadable:
      break;
  }
  return "it cannot be read";
}

std::string readOf(const Store& store) {
  const auto read = StoreFiles::readRules(store);
  if (const auto* file = std::get_if<StoreFiles::FileText>(&read)) {
    return withLineFeeds(Text::trimmed(file->text));
  }
  const std::string_view reason = explained(std::get<StoreFiles::NoText>(read));
  if (reason.empty()) return {};
  return "(The rules in " + store.root + "/rules.md were left out: " + std::string(reason) + ".)";
}

}  // namespace

std::string read(const Scope& scope) {
  std::string all;
  for (const Store& store : scope.stores()) {
    const std::string rules = readOf(store);
    if (!all.empty() && !rules.empty()) all += "\n\n";
    all += rules;
  }
  return Text::repaired(Fence::harmless(all));
}

}  // namespace quillstead::Rules
