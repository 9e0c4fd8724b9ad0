#include "cli/Setup/OpenCodePlugin.h"

#include "support/JSON/Writer.h"

namespace quillstead::cli::OpenCodePlugin {

namespace {

constexpr std::string_view firstWords = "// OpenCode plugin: the bridge to quillstead-hook.";
constexpr std::string_view programOnPath = R"(QUILLSTEAD_HOOK_BIN || "quillstead-hook")";

/// A JSON string is also a valid JavaScript string.
std::string pluginFor(const std::string& hook) {
  std::string text(source);
  text.replace(text.find(programOnPath), programOnPath.size(),
               "QUILLSTEAD_HOOK_BIN || " + JSON::write(JSON::Value(hook), JSON::Slashes::plain));
  return text;
}

bool isOurs(const std::string& text) { return text.starts_with(firstWords); }

}  // namespace

EditOutcome install(const std::optional<std::string>& before, const std::string& hook) {
  if (before && !isOurs(*before)) {
    return JSONC::Complaint{.line = 1, .column = 1, .what = "this is another plugin"};
  }
  return Edited{.text = pluginFor(hook), .hadOurs = before.has_value()};
}

EditOutcome uninstall(const std::string& before) {
  if (!isOurs(before)) return Edited{.text = before, .hadOurs = false};
  return Edited{.text = std::nullopt, .hadOurs = true};
}

}  // namespace quillstead::cli::OpenCodePlugin
