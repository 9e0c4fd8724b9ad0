#include "server/Tools/Tools.h"

#include "server/Tools/Arguments.h"
#include "server/Tools/Grab.h"
#include "server/Tools/MemoryAdd.h"
#include "server/Tools/MemoryGetRelevant.h"
#include "server/Tools/RulesGet.h"
#include "support/JSON/Reader.h"

#include <array>
#include <string>

namespace quillstead::Tools {

namespace {

struct Tool {
  std::string_view name;
  std::string_view description;
  std::string_view schema;  ///< of its arguments, as JSON
  bool changesMemory;
  ToolOutcome (*run)(Arguments& arguments, const OS::Environment& environment);
};

constexpr std::array<Tool, 4> tools{{
    {"rules_get", RulesGet::description, RulesGet::schema, false, RulesGet::run},
    {"memory_get_relevant", MemoryGetRelevant::description, MemoryGetRelevant::schema, false,
     MemoryGetRelevant::run},
    {"memory_add", MemoryAdd::description, MemoryAdd::schema, true, MemoryAdd::run},
    {"grab", Grab::description, Grab::schema, false, Grab::run},
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

ToolOutcome call(std::string_view name, JSON::ObjectView arguments,
                 const OS::Environment& environment) {
  for (const Tool& tool : tools) {
    if (tool.name != name) continue;
    Arguments given(arguments);
    return tool.run(given, environment);
  }
  return BadArguments{"there is no tool \"" + std::string(name) + '"'};
}

}  // namespace quillstead::Tools
