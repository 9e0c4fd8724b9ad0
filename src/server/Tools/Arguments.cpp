#include "server/Tools/Arguments.h"

#include "support/Text/Text.h"

namespace quillstead {

namespace {

void addUnlessBlank(std::vector<std::string>& texts, std::string_view text) {
  text = Text::trimmed(text);
  if (!text.empty()) texts.emplace_back(text);
}

}  // namespace

std::optional<std::string> Arguments::text(std::string_view name) {
  const JSON::View value = find(name);
  if (!value.isThere()) return std::nullopt;
  const auto given = value.text();
  if (!given || given->find('\0') != std::string_view::npos) {
    complain(name, "a text without zero characters");
    return std::nullopt;
  }
  return std::string(*given);
}

std::optional<std::string> Arguments::anyText(std::string_view name) {
  const JSON::View value = find(name);
  if (!value.isThere()) return std::nullopt;
  if (const auto given = value.text()) return std::string(*given);
  complain(name, "a text");
  return std::nullopt;
}

std::string Arguments::neededText(std::string_view name) {
  std::optional<std::string> given = text(name);
  if (given && !Text::isBlank(*given)) return std::move(*given);
  complain(name, "a text that is not blank");
  return {};
}

std::optional<std::string> Arguments::trimmedText(std::string_view name) {
  const std::optional<std::string> given = text(name);
  if (!given || Text::isBlank(*given)) return std::nullopt;
  return std::string(Text::trimmed(*given));
}

std::vector<std::string> Arguments::texts(std::string_view name) {
  std::vector<std::string> all;
  const JSON::View value = find(name);
  if (!value.isThere()) return all;
  if (const auto list = value.text()) {
    std::string_view rest = *list;
    for (;;) {
      const std::size_t comma = rest.find(',');
      addUnlessBlank(all, rest.substr(0, comma));
      if (comma == std::string_view::npos) return all;
      rest.remove_prefix(comma + 1);
    }
  }
  if (!value.array()) complain(name, "an array of texts");
  for (const JSON::View element : value.elements()) {
    if (!element.text()) complain(name, "an array of texts");
    addUnlessBlank(all, element.text().value_or(""));
  }
  return all;
}

bool Arguments::flag(std::string_view name) {
  const JSON::View value = find(name);
  if (value.isThere() && !value.boolean()) complain(name, "true or false");
  return value.boolean().value_or(false);
}

std::optional<std::size_t> Arguments::count(std::string_view name) {
  const JSON::View value = find(name);
  if (!value.isThere()) return std::nullopt;
  const auto integer = value.number() ? value.number()->integer() : std::nullopt;
  if (!integer || *integer < 1) {
    complain(name, "an integer of at least 1");
    return std::nullopt;
  }
  return static_cast<std::size_t>(*integer);
}

std::optional<Store::Kind> Arguments::store(std::string_view name) {
  const std::optional<std::string> given = text(name);
  if (!given) return std::nullopt;
  for (const Store::Kind kind : {Store::Kind::project, Store::Kind::personal}) {
    if (*given == nameOf(kind)) return kind;
  }
  complain(name, R"("project" or "personal")");
  return std::nullopt;
}

Scope Arguments::scope(const OS::Environment& environment) {
  const std::optional<std::string> cwd = text("cwd");
  const bool usable = cwd && !Text::isBlank(*cwd);
  return Scope::find(environment, usable ? std::optional<std::string_view>(*cwd) : std::nullopt);
}

JSON::View Arguments::find(std::string_view name) const {
  const JSON::View value = arguments_.find(name);
  return value.isNull() ? JSON::View() : value;
}

void Arguments::complain(std::string_view name, std::string_view expected) {
  if (!flaw_) flaw_ = std::string(name) + " must be " + std::string(expected);
}

}  // namespace quillstead
