#include "cli/Doctor/CodexTrust.h"

#include "cli/ChildRun.h"
#include "cli/Places.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/OS/Paths.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace quillstead::cli::CodexTrust {

namespace {

constexpr const char* id = "codex.trust";

std::string requests(const std::string& directory) {
  JSON::Array directories;
  directories.emplace_back(directory);
  const JSON::Object list =
      JSON::objectOf({{"jsonrpc", "2.0"},
                      {"id", 2},
                      {"method", "hooks/list"},
                      {"params", JSON::objectOf({{"cwds", std::move(directories)}})}});
  return R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"clientInfo":{"name":"quillstead","title":"quillstead","version":"1"}}}
{"jsonrpc":"2.0","method":"initialized"}
)" + JSON::write(list, JSON::Slashes::plain) +
         "\n";
}

/// The response to the list request, from the program's output.
std::optional<JSON::Document> answerIn(std::string_view output) {
  while (!output.empty()) {
    const std::size_t end = output.find('\n');
    if (end == std::string_view::npos) return std::nullopt;  // not whole yet
    auto document = JSON::read(output.substr(0, end));
    output.remove_prefix(end + 1);
    const auto number = document ? document->object().find("id").number() : std::nullopt;
    if (number && number->integer() == 2) return document;
  }
  return std::nullopt;
}

/// How many of our hooks Codex knows, and how many of them it does not run.
struct Known {
  int hooks = 0;
  int untrusted = 0;
  int disabled = 0;
};

Known knownIn(const JSON::Document& answer) {
  Known known;
  const auto result = answer.object().find("result").object().value_or(JSON::ObjectView());
  for (const JSON::View place : result.find("data").elements()) {
    for (const JSON::View each :
         place.object().value_or(JSON::ObjectView()).find("hooks").elements()) {
      const JSON::ObjectView hook = each.object().value_or(JSON::ObjectView());
      const auto command = hook.find("command").string();
      if (!command || command->find("quillstead-hook") == std::string_view::npos) continue;
      const auto trust = hook.find("trustStatus").string().value_or("");
      ++known.hooks;
      if (trust != "trusted" && trust != "managed") ++known.untrusted;
      if (hook.find("enabled").boolean() == false) ++known.disabled;
    }
  }
  return known;
}

}  // namespace

Check run(const Context& context, std::chrono::milliseconds limit) {
  const auto codex = onPath("codex", context.environment);
  if (!codex) return skipped(id, "codex is not on PATH");
  if (limit <= limit.zero()) return skipped(id, "no time was left to ask codex");
  const ChildEnd end = ChildRun::run(
      {.command = {*codex, "app-server"},
       .environment = ChildRun::changed(context.environment, {}),
       .directory = {},
       .input = requests(OS::canonicalPath(".").value_or("/")),
       .limit = limit,
       .isEnough = [](std::string_view output) { return answerIn(output).has_value(); }});
  const auto answer = answerIn(end.output);
  if (!answer) return skipped(id, "this version of codex does not say which hooks it trusts");

  const Known known = knownIn(*answer);
  const std::string review = "start codex once, and review the hooks with /hooks";
  Findings findings;
  if (known.hooks == 0) {
    findings.fail("codex has none of our hooks", "quillstead install codex");
  } else if (known.untrusted > 0) {
    findings.fail("codex does not run " + std::to_string(known.untrusted) + " of " +
                      std::to_string(known.hooks) + " hooks of ours: they are not reviewed",
                  review);
  }
  if (known.disabled > 0) findings.fail("some of our hooks are switched off in codex", review);
  return findings.check(id, "codex trusts the " + std::to_string(known.hooks) + " hooks of ours");
}

}  // namespace quillstead::cli::CodexTrust
