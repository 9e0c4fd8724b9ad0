#include "server/Tools/MemoryAdd.h"

#include "contract/Contract.h"
#include "server/Markdown/Markdown.h"
#include "server/Shown.h"
#include "server/Store/NewCard.h"
#include "server/Store/Scope.h"
#include "support/Text/Text.h"

#include <string_view>
#include <utility>

namespace quillstead::server::MemoryAdd {

namespace {

/// The store that the caller asked for, else the project's, else the personal one.
const Store* storeFor(const Scope& scope, std::optional<Store::Kind> wanted) {
  const bool inProject = wanted ? *wanted == Store::Kind::project : scope.project.has_value();
  const std::optional<Store>& store = inProject ? scope.project : scope.personal;
  return store ? &*store : nullptr;
}

/// Why there is no such store.
std::string_view whyNone(const Scope& scope, std::optional<Store::Kind> wanted) {
  if (wanted != Store::Kind::project) {
    return "There is no place for personal memory: the home directory is not known, or everyone "
           "can write to the directory of memory.";
  }
  if (scope.projectLeftOut) return projectLeftOutNote;
  return "There is no project here: no directory .quillstead in the working directory or above it.";
}

}  // namespace

ToolReply run(Arguments& arguments, const OS::Environment& environment) {
  NewCard card{.text = Shown::withoutOwnBlocks(arguments.neededString("text")),
               .title = arguments.trimmedString("title"),
               .tags = arguments.strings("tags"),
               .session = arguments.string(contract::Argument::session),
               .subagent = arguments.string(contract::Argument::subagent)};
  const std::optional<Store::Kind> wanted = arguments.store("store");
  const std::optional<std::string> cwd = arguments.cwd();
  if (arguments.flaw()) return badArguments(*arguments.flaw());
  if (Text::isBlank(card.text)) {
    return refusal("Not remembered: it is only a copy of what memory sent earlier.");
  }

  if (Text::isBlank(Markdown::withoutComments(card.text))) {
    return refusal("Not remembered: it is only an HTML comment, and these are never shown.");
  }

  const Scope scope = Scope::find(environment, cwd);
  const Store* const store = storeFor(scope, wanted);
  if (!store) return refusal(std::string(whyNone(scope, wanted)));
  const auto outcome = NewCards::add(*store, card);
  if (const auto* failed = std::get_if<NotAdded>(&outcome)) {
    return refusal("Not remembered: " + failed->reason + '.');
  }
  const auto& added = std::get<AddedCard>(outcome);
  ToolReply reply{.text = "Remembered \"" + Shown::line(added.title) + "\" as " +
                          std::string(nameOf(store->kind)) + " card " +
                          Shown::line(added.fileName) + '.',
                  .meta = {}};
  reply.meta.set(contract::Meta::replyKind, contract::ReplyKind::added);
  reply.meta.set(contract::Meta::store, nameOf(store->kind));
  reply.meta.set(contract::Meta::file, added.fileName);
  return reply;
}

}  // namespace quillstead::server::MemoryAdd
