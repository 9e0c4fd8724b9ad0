#include "helpers/HarnessFacts.h"

#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace quillstead {

namespace {

constexpr std::string_view contextsPlace = "CONTEXT";

std::string table() {
  std::ifstream file(QUILLSTEAD_HARNESS_TABLE, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <typename Content>
Content needed(std::optional<Content> content) {
  if (!content) throw std::runtime_error("harnesses.json lacks something");
  return *std::move(content);
}

std::optional<std::string> text(JSON::View value) {
  if (value.isNull()) return std::nullopt;
  return std::string(needed(value.string()));
}

std::optional<std::size_t> bytes(JSON::View value) {
  if (value.isNull()) return std::nullopt;
  return static_cast<std::size_t>(needed(needed(value.number()).integer()));
}

std::string sessionKeyIn(JSON::ObjectView payload) {
  for (const JSON::MemberView& member : payload.members()) {
    if (member.value.string() == "SESSION") return std::string(member.key);
  }
  throw std::runtime_error("harnesses.json lacks a session");
}

HarnessFacts factsOf(const JSON::MemberView& row) {
  const JSON::ObjectView facts = needed(row.value.object());
  const JSON::ObjectView payload = needed(facts.find("payload").object());
  return {.name = std::string(row.key),
          .silence = text(facts.find("silence")),
          .budget = bytes(facts.find("contextBudget")),
          .cardCeiling = bytes(facts.find("cardCeiling")),
          .cardHeadCeiling = bytes(facts.find("cardHeadCeiling")),
          .stamp = needed(text(facts.find("stamp"))),
          .takesDecision = needed(facts.find("takesDecision").boolean()),
          .refusesCursorsPayload = needed(facts.find("refusesCursorsPayload").boolean()),
          .sessionKey = sessionKeyIn(payload),
          .hasRoots = payload.find("workspace_roots").exists(),
          .hasTranscript = payload.find("transcript_path").exists(),
          .form = JSON::write(facts.find("envelope"), JSON::Slashes::plain)};
}

/// Compares `answer` with the form, and gives the text that stands where the form has its place.
std::optional<std::string> contextIn(JSON::ObjectView answer, JSON::ObjectView form) {
  std::optional<std::string> context;
  if (answer.size() != form.size()) return std::nullopt;
  for (const JSON::MemberView& wanted : form.members()) {
    const JSON::View given = answer.find(wanted.key);
    if (wanted.value.string() == contextsPlace) {
      if (!given.string()) return std::nullopt;
      context = *given.string();
    } else if (const auto inner = wanted.value.object()) {
      context = given.object() ? contextIn(*given.object(), *inner) : std::nullopt;
    } else if (given.string() != wanted.value.string() ||
               given.boolean() != wanted.value.boolean()) {
      return std::nullopt;
    }
  }
  return context;
}

}  // namespace

const std::vector<HarnessFacts>& harnessFacts() {
  static const std::vector<HarnessFacts> all = [] {
    const std::string written = table();
    const JSON::Document document = needed(JSON::read(written));
    std::vector<HarnessFacts> rows;
    for (const JSON::MemberView& row : document.object().members()) rows.push_back(factsOf(row));
    return rows;
  }();
  return all;
}

const HarnessFacts& harnessFacts(std::string_view name) {
  for (const HarnessFacts& harness : harnessFacts()) {
    if (harness.name == name) return harness;
  }
  throw std::invalid_argument("no such harness");
}

std::optional<std::string> contextIn(JSON::ObjectView answer, const HarnessFacts& harness) {
  const auto form = JSON::read(harness.form);
  return contextIn(answer, form->object());
}

}  // namespace quillstead
