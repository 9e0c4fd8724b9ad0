#include "server/Tools/Tools.h"

#include "contract/Contract.h"
#include "server/Tools/Arguments.h"
#include "server/Tools/Grab.h"
#include "server/Tools/MemoryAdd.h"
#include "server/Tools/MemoryGetRelevant.h"
#include "server/Tools/RulesGet.h"
#include "support/JSON/Reader.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace quillstead::server::Tools {

namespace {

struct Tool {
  std::string_view name;
  std::string_view description;
  std::string_view schema;  ///< of its arguments, as JSON
  bool changesMemory;
  ToolReply (*run)(Arguments& arguments, const OS::Environment& environment);
};

constexpr std::array<Tool, 4> tools{{
    {contract::Tool::rulesGet, RulesGet::description, RulesGet::schema, false, RulesGet::run},
    {contract::Tool::memoryGetRelevant, MemoryGetRelevant::description, MemoryGetRelevant::schema,
     false, MemoryGetRelevant::run},
    {contract::Tool::memoryAdd, MemoryAdd::description, MemoryAdd::schema, true, MemoryAdd::run},
    {contract::Tool::grab, Grab::description, Grab::schema, false, Grab::run},
}};

JSON::Value described(const Tool& tool) {
  JSON::Object hints = JSON::objectOf({{"readOnlyHint", !tool.changesMemory},
                                       {"destructiveHint", false},
                                       {"openWorldHint", false}});
  const std::optional<JSON::Document> schema = JSON::read(tool.schema);
  return JSON::objectOf(
      {{"name", tool.name},
       {"description", tool.description},
       {"inputSchema", JSON::Value::copyOf(schema ? schema->root() : JSON::View())},
       {"annotations", std::move(hints)}});
}

}  // namespace

JSON::Array list() {
  JSON::Array all;
  for (const Tool& tool : tools) all.push_back(described(tool));
  return all;
}

std::optional<ToolReply> call(std::string_view name, JSON::ObjectView arguments,
                              const OS::Environment& environment) {
  for (const Tool& tool : tools) {
    if (tool.name != name) continue;
    Arguments given(arguments);
    return tool.run(given, environment);
  }
  return std::nullopt;
}

JSON::Object asResult(ToolReply reply) {
  JSON::Array content;
  content.emplace_back(JSON::objectOf({{"type", "text"}, {"text", std::move(reply.text)}}));
  JSON::Object result = JSON::objectOf({{"content", std::move(content)}});
  if (reply.isError) result.set("isError", true);
  if (!reply.meta.empty()) result.set("_meta", std::move(reply.meta));
  return result;
}

}  // namespace quillstead::server::Tools
