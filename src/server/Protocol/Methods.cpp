#include "server/Protocol/Methods.h"

#include "server/Protocol/Reply.h"
#include "server/Tools/Tools.h"

#include <algorithm>
#include <array>
#include <string>
#include <variant>

namespace quillstead::Methods {

namespace {

/// What the server does is the same in all of them.
constexpr std::array<std::string_view, 4> versions{"2024-11-05", "2025-03-26", "2025-06-18",
                                                   "2025-11-25"};

constexpr std::string_view instructions =
    "Memory kept as plain Markdown files: rules that always hold, and cards, one piece of "
    "knowledge each. Call memory_get_relevant with what you are about to do, grab for one whole "
    "card, and memory_add for what will be worth knowing in later sessions.";

JSON::Value initialize(JSON::View id, JSON::ObjectView parameters) {
  const auto wanted = parameters.find("protocolVersion").text();
  if (!wanted) {
    return Reply::error(id, Reply::Error::invalidParameters, "protocolVersion must be a text");
  }
  JSON::Object capabilities = JSON::objectOf({{"tools", JSON::Object()}});
  JSON::Object server =
      JSON::objectOf({{"name", "quillstead-mcp"}, {"version", QUILLSTEAD_VERSION}});
  return Reply::result(id, JSON::objectOf({{"protocolVersion", agreedVersion(*wanted)},
                                           {"capabilities", std::move(capabilities)},
                                           {"serverInfo", std::move(server)},
                                           {"instructions", instructions}}));
}

JSON::Value listTools(JSON::View id, JSON::ObjectView parameters) {
  const JSON::View cursor = parameters.find("cursor");
  if (cursor.isThere() && !cursor.isNull()) {  // none was ever handed out: the list has one page
    return Reply::error(id, Reply::Error::invalidParameters, "the cursor is unknown");
  }
  return Reply::result(id, JSON::objectOf({{"tools", Tools::list()}}));
}

JSON::Value callTool(JSON::View id, JSON::ObjectView parameters,
                     const OS::Environment& environment) {
  const auto name = parameters.find("name").text();
  if (!name) return Reply::error(id, Reply::Error::invalidParameters, "name must be a text");
  const JSON::View arguments = parameters.find("arguments");
  if (arguments.isThere() && !arguments.isNull() && !arguments.object()) {
    return Reply::error(id, Reply::Error::invalidParameters, "arguments must be an object");
  }
  auto outcome = Tools::call(*name, arguments.object().value_or(JSON::ObjectView()), environment);
  if (const auto* bad = std::get_if<BadArguments>(&outcome)) {
    return Reply::error(id, Reply::Error::invalidParameters, bad->reason);
  }
  return Reply::result(id, asResult(std::move(std::get<ToolReply>(outcome))));
}

}  // namespace

std::string_view agreedVersion(std::string_view wanted) {
  const auto* const known = std::find(versions.begin(), versions.end(), wanted);
  return known != versions.end() ? *known : versions.back();
}

JSON::Value answer(JSON::View id, std::string_view method, JSON::ObjectView parameters,
                   const OS::Environment& environment) {
  if (method == "initialize") return initialize(id, parameters);
  if (method == "ping") return Reply::result(id, {});
  if (method == "tools/list") return listTools(id, parameters);
  if (method == "tools/call") return callTool(id, parameters, environment);
  return Reply::error(id, Reply::Error::unknownMethod,
                      "there is no method \"" + std::string(method) + '"');
}

}  // namespace quillstead::Methods
