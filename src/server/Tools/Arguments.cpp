#include "server/Tools/Arguments.h"

#include "contract/Contract.h"
#include "support/Text/Text.h"

namespace quillstead::server {

namespace {

void addUnlessBlank(std::vector<std::string>& strings, std::string_view string) {
  string = Text::trimmed(string);
  if (!string.empty()) strings.emplace_back(string);
}

}  // namespace

std::optional<std::string> Arguments::string(std::string_view name) {
  const JSON::View value = find(name);
  if (!value.exists()) return std::nullopt;
  const auto given = value.string();
  if (!given || given->find('\0') != std::string_view::npos) {
    complain(name, "a string without NUL characters");
    return std::nullopt;
  }
  return std::string(*given);
}

std::optional<std::string> Arguments::anyString(std::string_view name) {
  const JSON::View value = find(name);
  if (!value.exists()) return std::nullopt;
  if (const auto given = value.string()) return std::string(*given);
  complain(name, "a string");
  return std::nullopt;
}

std::string Arguments::neededString(std::string_view name) {
  std::optional<std::string> given = string(name);
  if (given && !Text::isBlank(*given)) return std::move(*given);
  complain(name, "a string that is not blank");
  return {};
}

std::optional<std::string> Arguments::trimmedString(std::string_view name) {
  const std::optional<std::string> given = string(name);
  if (!given || Text::isBlank(*given)) return std::nullopt;
  return std::string(Text::trimmed(*given));
}

std::vector<std::string> Arguments::strings(std::string_view name) {
  std::vector<std::string> all;
  const JSON::View value = find(name);
  if (!value.exists()) return all;
  if (const auto list = value.string()) {
    std::string_view rest = *list;
    for (;;) {
      const std::size_t comma = rest.find(',');
      addUnlessBlank(all, rest.substr(0, comma));
      if (comma == std::string_view::npos) return all;
      rest.remove_prefix(comma + 1);
    }
  }
  if (!value.array()) complain(name, "an array of strings");
  for (const JSON::View element : value.elements()) {
    if (!element.string()) complain(name, "an array of strings");
    addUnlessBlank(all, element.string().value_or(""));
  }
  return all;
}

bool Arguments::flag(std::string_view name) {
  const JSON::View value = find(name);
  if (value.exists() && !value.boolean()) complain(name, "true or false");
  return value.boolean().value_or(false);
}

std::optional<std::size_t> Arguments::count(std::string_view name) {
  const JSON::View value = find(name);
  if (!value.exists()) return std::nullopt;
  const auto integer = value.number() ? value.number()->integer() : std::nullopt;
  if (!integer || *integer < 1) {
    complain(name, "an integer of at least 1");
    return std::nullopt;
  }
  return static_cast<std::size_t>(*integer);
}

std::optional<Store::Kind> Arguments::store(std::string_view name) {
  const std::optional<std::string> given = string(name);
  if (!given) return std::nullopt;
  for (const Store::Kind kind : {Store::Kind::project, Store::Kind::personal}) {
    if (*given == nameOf(kind)) return kind;
  }
  complain(name, R"("project" or "personal")");
  return std::nullopt;
}

std::optional<std::string> Arguments::cwd() {
  std::optional<std::string> given = string(contract::Argument::cwd);
  return given && Text::isBlank(*given) ? std::nullopt : given;
}

SessionMemory::Caller Arguments::caller() {
  SessionMemory::Caller caller{.sessionID = anyString(contract::Argument::sessionID),
                               .transcriptPath = anyString(contract::Argument::transcriptPath)};
  return caller;
}

JSON::View Arguments::find(std::string_view name) const {
  const JSON::View value = arguments_.find(name);
  return value.isNull() ? JSON::View() : value;
}

void Arguments::complain(std::string_view name, std::string_view expected) {
  if (!flaw_) flaw_ = std::string(name) + " must be " + std::string(expected);
}

}  // namespace quillstead::server
