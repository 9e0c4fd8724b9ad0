#include "cli/Setup/HookEntries.h"

#include "cli/Setup/HookHandler.h"
#include "cli/Setup/Members.h"
#include "support/JSONC/Edit.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quillstead::cli::HookEntries {

namespace {

using JSONC::Document;
using JSONC::Kind;
using JSONC::Node;
using JSONC::Path;
using JSONC::Step;

const std::vector<std::string> hooksKey{"hooks"};

Path with(Path path, const Step& step) {
  path.push_back(step);
  return path;
}

/// An existing handler of ours.
struct Found {
  std::string event;
  Path holder;  ///< the array that holds it
  std::size_t index;
  std::string slot;

  [[nodiscard]] Path path() const { return with(holder, Step(index)); }
};

void collect(const Document& document, const std::string& event, const Path& holder,
             std::vector<Found>& found) {
  const Node& handlers = *document.at(holder);
  for (std::size_t i = 0; i < handlers.items.size(); ++i) {
    const auto run = HookHandler::read(document, handlers.items[i].value);
    if (!run) continue;
    found.push_back({.event = event,
                     .holder = holder,
                     .index = i,
                     .slot = HookHandler::slotOf(run->arguments)});
  }
}

std::vector<Found> allOurs(const Document& document, const HookTable& table) {
  std::vector<Found> found;
  const Node* events = document.at(Members::pathOf(hooksKey));
  if (events == nullptr) return found;
  for (const JSONC::Item& event : events->items) {
    if (find(*events, event.key) != &event) continue;  // a later one of that name counts
    const Path path{Step("hooks"), Step(event.key)};
    if (table.form == HookForm::shellHandlers) {
      collect(document, event.key, path, found);
      continue;
    }
    for (std::size_t group = 0; group < event.value.items.size(); ++group) {
      collect(document, event.key, with(with(path, Step(group)), Step("hooks")), found);
    }
  }
  return found;
}

/// The last first: removing in this order keeps the positions of the others valid.
std::vector<Found> fromTheLast(std::vector<Found> found) {
  std::reverse(found.begin(), found.end());
  return found;
}

/// True when the group of these handlers is useless without ours.
bool isGroupOurs(const Document& document, const Path& holder) {
  const Node& handlers = *document.at(holder);
  const Node& group = *document.at(std::span(holder).first(holder.size() - 1));
  const bool areOurs =
      std::all_of(handlers.items.begin(), handlers.items.end(), [&](const JSONC::Item& handler) {
        return HookHandler::read(document, handler.value).has_value();
      });
  return areOurs &&
         std::all_of(group.items.begin(), group.items.end(), [](const JSONC::Item& member) {
           return member.key == "hooks" || member.key == "matcher";
         });
}

/// What to remove with a handler: its group, when it has no other handler.
Path pathOfRemoval(const Document& document, const HookTable& table, const Found& one) {
  const bool isGrouped = table.form != HookForm::shellHandlers;
  if (!isGrouped || document.at(one.holder)->items.size() > 1 ||
      !isGroupOurs(document, one.holder)) {
    return one.path();
  }
  Path group = one.holder;
  group.pop_back();
  return group;
}

/// Changes one event's handlers into the wanted ones.
class Event {
 public:
  Event(const HookTable& table, const HookEvent& event, const Programs& programs)
      : table_(table), event_(event), programs_(programs) {}

  [[nodiscard]] Document install(Document document) {
    assign(document);
    for (std::size_t i = 0; i < assigned_.size(); ++i) {
      if (!assigned_[i]) continue;
      document = HookHandler::update(std::move(document), assigned_[i]->path(), wanted(i));
      document = updateMatcher(std::move(document), *assigned_[i]);
    }
    document = addMissing(std::move(document));
    for (const Found& one : fromTheLast(surplus_)) {
      document = JSONC::Edit::remove(document, pathOfRemoval(document, table_, one)).document;
    }
    return document;
  }

 private:
  [[nodiscard]] HookHandler::Wanted wanted(std::size_t number) const {
    return {.table = table_, .event = event_, .number = number, .programs = programs_};
  }

  /// Which existing handler becomes which wanted one: first by slot, then in order.
  void assign(const Document& document) {
    surplus_ = allOurs(document, table_);
    std::erase_if(surplus_, [this](const Found& one) { return one.event != event_.name; });
    assigned_.resize(event_.handlers.size());
    for (std::size_t i = 0; i < assigned_.size(); ++i) {
      const std::string slot = HookHandler::slotOf(wanted(i).arguments());
      take(i, std::find_if(surplus_.begin(), surplus_.end(),
                           [&](const Found& found) { return found.slot == slot; }));
    }
    for (std::size_t i = 0; i < assigned_.size(); ++i) {
      if (!assigned_[i]) take(i, surplus_.begin());
    }
  }

  void take(std::size_t number, std::vector<Found>::iterator one) {
    if (one == surplus_.end()) return;
    assigned_[number] = *one;
    surplus_.erase(one);
  }

  [[nodiscard]] Document updateMatcher(Document document, const Found& one) const {
    const bool isGrouped = table_.form != HookForm::shellHandlers;
    if (isGrouped && !isGroupOurs(document, one.holder)) return document;
    Path path = one.path();
    if (isGrouped) path.resize(one.holder.size() - 1);
    path.emplace_back("matcher");
    const Node* matcher = document.at(path);
    const auto text = matcher == nullptr ? std::nullopt : document.string(*matcher);
    const bool isOld =
        text && std::find(event_.earlierMatchers.begin(), event_.earlierMatchers.end(), *text) !=
                    event_.earlierMatchers.end();
    return isOld ? JSONC::Edit::replace(document, path, JSON::Value(*event_.matcher)) : document;
  }

  [[nodiscard]] Document addMissing(Document document) const {
    JSON::Array missing;
    for (std::size_t i = 0; i < assigned_.size(); ++i) {
      if (!assigned_[i]) missing.emplace_back(handler(i));
    }
    if (missing.empty()) return document;
    const auto beside =
        std::find_if(assigned_.begin(), assigned_.end(),
                     [](const std::optional<Found>& one) { return one.has_value(); });
    if (beside != assigned_.end()) {
      for (const JSON::Value& one : missing) {
        document = JSONC::Edit::addElement(document, (*beside)->holder, one);
      }
      return document;
    }
    return addToEvent(document, std::move(missing));
  }

  /// Adds a group of these handlers, or the handlers where there are no groups.
  [[nodiscard]] Document addToEvent(const Document& document, JSON::Array handlers) const {
    JSON::Array added;
    if (table_.form == HookForm::shellHandlers) {
      added = std::move(handlers);
    } else {
      JSON::Object group;
      if (event_.matcher) group.set("matcher", JSON::Value(*event_.matcher));
      group.set("hooks", JSON::Value(std::move(handlers)));
      added.emplace_back(std::move(group));
    }
    const std::vector<std::string> keys{"hooks", std::string(event_.name)};
    const Path path = Members::pathOf(keys);
    if (document.at(path) == nullptr) {
      return Members::add(document, keys, JSON::Value(std::move(added)));
    }
    return JSONC::Edit::addElement(document, path, added.front());  // each event has one
  }

  [[nodiscard]] JSON::Object handler(std::size_t number) const {
    JSON::Object made = HookHandler::make(wanted(number));
    if (table_.form == HookForm::shellHandlers && event_.matcher) {
      made.set("matcher", JSON::Value(*event_.matcher));
    }
    return made;
  }

  const HookTable& table_;
  const HookEvent& event_;
  const Programs& programs_;
  std::vector<std::optional<Found>> assigned_;
  std::vector<Found> surplus_;
};

std::optional<JSONC::Complaint> misshapenEvent(const Document& document, const HookTable& table,
                                               const JSONC::Item& event) {
  const std::string name = "\"" + event.key + "\"";
  if (event.value.kind != Kind::array) {
    return document.complaint(event.value, name + " is not an array");
  }
  for (const JSONC::Item& entry : event.value.items) {
    if (entry.value.kind != Kind::object) {
      return document.complaint(entry.value, "an entry of " + name + " is not an object");
    }
    if (table.form == HookForm::shellHandlers) continue;
    const JSONC::Item* handlers = find(entry.value, "hooks");
    if (handlers == nullptr || handlers->value.kind != Kind::array) {
      return document.complaint(handlers == nullptr ? entry.value : handlers->value,
                                "an entry of " + name + " has no array \"hooks\"");
    }
    for (const JSONC::Item& handler : handlers->value.items) {
      if (handler.value.kind == Kind::object) continue;
      return document.complaint(handler.value, "a hook of " + name + " is not an object");
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<JSONC::Complaint> misshapen(const Document& document, const HookTable& table) {
  if (auto complaint = Members::notObjects(document, hooksKey)) return complaint;
  const Node* events = document.at(Members::pathOf(hooksKey));
  if (events == nullptr) return std::nullopt;
  for (const JSONC::Item& event : events->items) {
    if (auto complaint = misshapenEvent(document, table, event)) return complaint;
  }
  return std::nullopt;
}

bool areThere(const Document& document, const HookTable& table) {
  return !allOurs(document, table).empty();
}

bool isOurs(const Document& document, const Node& handler) {
  return HookHandler::read(document, handler).has_value();
}

Document install(Document document, const HookTable& table, const Programs& programs) {
  for (const HookEvent& event : table.events) {
    document = Event(table, event, programs).install(std::move(document));
  }
  for (const Found& one : allOurs(document, table)) {
    document = HookHandler::updateProgram(std::move(document), one.path(), programs);
  }
  return document;
}

std::optional<Document> uninstall(Document document, const HookTable& table) {
  for (;;) {
    const std::vector<Found> found = allOurs(document, table);
    if (found.empty()) return document;
    auto left = Members::remove(document, pathOfRemoval(document, table, found.back()));
    if (!left) return std::nullopt;
    document = *std::move(left);
  }
}

}  // namespace quillstead::cli::HookEntries
