#include "server/Tools/MemoryAdd.h"

#include "server/Store/NewCard.h"

#include <utility>

namespace quillstead::MemoryAdd {

namespace {

/// The store that the caller asked for, else the project's, else the personal one.
const Store* storeFor(const Scope& scope, std::optional<Store::Kind> wanted) {
  const bool inProject = wanted ? *wanted == Store::Kind::project : scope.project.has_value();
  const std::optional<Store>& store = inProject ? scope.project : scope.personal;
  return store ? &*store : nullptr;
}

}  // namespace

ToolOutcome run(Arguments& arguments, const OS::Environment& environment) {
  NewCard card{.text = arguments.neededText("text"),
               .title = arguments.trimmedText("title"),
               .tags = arguments.texts("tags"),
               .session = arguments.text("_quillstead_session"),
               .subagent = arguments.text("_quillstead_subagent")};
  const std::optional<Store::Kind> wanted = arguments.store("store");
  const Scope scope = arguments.scope(environment);
  if (arguments.flaw()) return BadArguments{*arguments.flaw()};

  const Store* const store = storeFor(scope, wanted);
  if (!store) {
    return refusal(wanted == Store::Kind::project
                       ? "There is no project here: no directory .quillstead in the working "
                         "directory or above it."
                       : "There is no place for personal memory: no home directory is known.");
  }
  const auto outcome = NewCards::add(*store, card);
  if (const auto* failed = std::get_if<NotAdded>(&outcome)) {
    return refusal("Not remembered: " + failed->reason + '.');
  }
  const auto& added = std::get<AddedCard>(outcome);
  ToolReply reply{.text = "Remembered \"" + added.title + "\" as " +
                          std::string(nameOf(store->kind)) + " card " + added.fileName + '.',
                  .meta = {}};
  reply.meta.set("quillstead/replyKind", "added");
  reply.meta.set("quillstead/store", nameOf(store->kind));
  reply.meta.set("quillstead/file", added.fileName);
  return reply;
}

}  // namespace quillstead::MemoryAdd
