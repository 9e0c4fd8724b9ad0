#include "server/Protocol/Methods.h"

#include "server/Protocol/Reply.h"
#include "server/Shown.h"
#include "server/Tools/Tools.h"

#include <algorithm>
#include <array>
#include <string>

namespace quillstead::server::Methods {

namespace {

/// What the server does is the same in all of them.
constexpr std::array<std::string_view, 4> versions{"2024-11-05", "2025-03-26", "2025-06-18",
                                                   "2025-11-25"};

constexpr std::string_view instructions =
    "Memory kept as plain Markdown files: rules that always hold, and cards, one piece of "
    "knowledge each. Call memory_get_relevant with what you are about to do, grab for one whole "
    "card, and memory_add for what will be worth knowing in later sessions.";

JSON::Value initialize(JSON::View id, JSON::ObjectView parameters) {
  const auto wanted = parameters.find("protocolVersion").string();
  if (!wanted) {
    return Reply::error(id, Reply::Error::invalidParams, "protocolVersion must be a string");
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
  if (cursor.exists() && !cursor.isNull()) {  // none was ever handed out: the list has one page
    return Reply::error(id, Reply::Error::invalidParams, "the cursor is unknown");
  }
  return Reply::result(id, JSON::objectOf({{"tools", Tools::list()}}));
}

JSON::Value callTool(JSON::View id, JSON::ObjectView parameters,
                     const OS::Environment& environment) {
  const auto name = parameters.find("name").string();
  if (!name) return Reply::error(id, Reply::Error::invalidParams, "name must be a string");
  const JSON::View arguments = parameters.find("arguments");
  if (arguments.exists() && !arguments.isNull() && !arguments.object()) {
    return Reply::error(id, Reply::Error::invalidParams, "arguments must be an object");
  }
  auto reply = Tools::call(*name, arguments.object().value_or(JSON::ObjectView()), environment);
  if (!reply) {
    return Reply::error(id, Reply::Error::invalidParams,
                        "there is no tool \"" + Shown::line(*name) + '"');
  }
  return Reply::result(id, Tools::asResult(std::move(*reply)));
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
  return Reply::error(id, Reply::Error::methodNotFound,
                      "there is no method \"" + Shown::line(method) + '"');
}

}  // namespace quillstead::server::Methods
