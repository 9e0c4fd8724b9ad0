#include "server/Protocol.h"
#include "server/helpers/MemoryStage.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillstead::server::test {

namespace {

std::string initializing(std::string_view version) {
  return R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":)" +
         jsonText(version) + R"(,"capabilities":{},"clientInfo":{"name":"t","version":"1"}}})";
}

TEST(Protocol, SpeaksTheVersionTheClientWantsOrTheNewest) {
  const MemoryStage stage;
  for (const auto& [wanted, agreed] :
       std::initializer_list<std::pair<const char*, const char*>>{{"2024-11-05", "2024-11-05"},
                                                                  {"2025-03-26", "2025-03-26"},
                                                                  {"2025-06-18", "2025-06-18"},
                                                                  {"2025-11-25", "2025-11-25"},
                                                                  {"2024-10-07", "2025-11-25"},
                                                                  {"2099-01-01", "2025-11-25"},
                                                                  {"", "2025-11-25"}}) {
    const JSON::Object answer = unit::parsedObject(stage.answerTo(initializing(wanted)));
    const JSON::Object* const result = JSON::objectOf(answer.find("result"));
    ASSERT_NE(result, nullptr) << wanted;
    EXPECT_TRUE(JSON::isText(result->find("protocolVersion"), agreed)) << wanted;
    EXPECT_NE(JSON::objectOf(result->find("capabilities"))->find("tools"), nullptr);
    const JSON::Object* const server = JSON::objectOf(result->find("serverInfo"));
    EXPECT_TRUE(JSON::isText(server->find("name"), "quillstead-mcp"));
  }
}

TEST(Protocol, AnswersBadMessagesWithTheirError) {
  struct Case {
    std::string_view line;
    std::string_view id;
    std::int64_t code;
  };
  const MemoryStage stage;
  for (const Case& one :
       {Case{"nonsense", "null", -32700},
        {R"({"jsonrpc":"2.0","id":1,"method":"ping")", "null", -32700},
        {"{} {}", "null", -32700},
        {"42", "null", -32700},
        {"\"text\"", "null", -32700},
        {"{\"a\":\"\xFF\"}", "null", -32700},
        {"{}", "null", -32600},
        {"[]", "null", -32600},
        {R"({"id":1,"method":"ping"})", "1", -32600},
        {R"({"jsonrpc":"1.0","id":"x","method":"ping"})", "\"x\"", -32600},
        {R"({"jsonrpc":"2.0","id":null,"method":"ping"})", "null", -32600},
        {R"({"jsonrpc":"2.0","id":true,"method":"ping"})", "null", -32600},
        {R"({"jsonrpc":"2.0","id":[1],"method":"ping"})", "null", -32600},
        {R"({"jsonrpc":"2.0","id":1,"method":5})", "1", -32600},
        {R"({"jsonrpc":"2.0","id":1})", "1", -32600},
        {R"({"jsonrpc":"2.0","id":1,"method":"no/such"})", "1", -32601},
        {R"({"jsonrpc":"2.0","id":1,"method":"server/discover"})", "1", -32601},
        {R"({"jsonrpc":"2.0","id":1.5,"method":"Ping"})", "1.5", -32601},
        {R"({"jsonrpc":"2.0","id":1,"method":"ping","params":[]})", "1", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"initialize"})", "1", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":1}})", "1",
         -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"tools/list","params":{"cursor":"x"}})", "1", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"tools/call"})", "1", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"nope"}})", "1", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":7}})", "1", -32602},
        {R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"grab","arguments":1}})",
         "1", -32602}}) {
    SCOPED_TRACE(one.line);
    const JSON::Object answer = unit::parsedObject(stage.answerTo(one.line));
    EXPECT_TRUE(JSON::isText(answer.find("jsonrpc"), "2.0"));
    ASSERT_NE(answer.find("id"), nullptr);
    const std::string wrapped = "[" + std::string(one.id) + "]";
    EXPECT_TRUE(unit::areSame(*answer.find("id"), unit::parsed(wrapped).array()->front()));
    const JSON::Object* const error = JSON::objectOf(answer.find("error"));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->find("code")->number()->integer(), one.code);
    EXPECT_FALSE(error->find("message")->string()->empty());
  }
}

TEST(Protocol, AnswersPingsAndKeepsTheirIds) {
  const MemoryStage stage;
  for (const std::string id :
       {"1", "\"text\"", "0", "-5", "1.0", "123456789012345678901234567890"}) {
    EXPECT_EQ(stage.answerTo(R"({"jsonrpc":"2.0","id":)" + id + R"(,"method":"ping"})"),
              R"({"jsonrpc":"2.0","id":)" + id + R"(,"result":{}})");
  }
}

TEST(Protocol, AnswersNoNotificationsResponsesOrBlankLines) {
  const MemoryStage stage;
  for (const std::string_view line :
       {"", "  \t\r", R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
        R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":1}})",
        R"({"jsonrpc":"2.0","method":"no/such","params":[]})",
        R"({"jsonrpc":"2.0","id":1,"result":{}})",
        R"({"jsonrpc":"2.0","id":1,"error":{"code":1,"message":"x"}})",
        R"([{"jsonrpc":"2.0","method":"notifications/initialized"}])"}) {
    EXPECT_EQ(stage.answerTo(line), "") << line;
  }
}

TEST(Protocol, DoesNothingForAToolCallThatWantsNoAnswer) {
  const MemoryStage stage;
  EXPECT_EQ(stage.answerTo(R"({"jsonrpc":"2.0","method":"tools/call","params":)"
                           R"({"name":"memory_add","arguments":{"text":"x"}}})"),
            "");
  EXPECT_EQ(stage.call("grab", R"({"name":"x"})").isError, true);
}

TEST(Protocol, AnswersBatchesInOneLine) {
  const MemoryStage stage;
  EXPECT_EQ(stage.answerTo(R"([{"jsonrpc":"2.0","id":1,"method":"ping"},)"
                           R"({"jsonrpc":"2.0","method":"notifications/initialized"},)"
                           R"({"jsonrpc":"2.0","id":2,"method":"ping"}])"),
            R"([{"jsonrpc":"2.0","id":1,"result":{}},{"jsonrpc":"2.0","id":2,"result":{}}])");
  const JSON::Value mixed = unit::parsed(stage.answerTo("[1]"));
  ASSERT_NE(mixed.array(), nullptr);
  EXPECT_EQ(mixed.array()->size(), 1U);
}

TEST(Protocol, StopsABatchWhoseAnswersNobodyTakes) {
  const MemoryStage stage;
  const std::string add =
      callRequest(2, "memory_add", R"({"text":"late","cwd":)" + jsonText(stage.project()) + "}");
  std::vector<const char*> entries;
  for (const std::string& entry : stage.environment()) entries.push_back(entry.c_str());
  entries.push_back(nullptr);
  EXPECT_FALSE(Protocol::respond(R"([{"jsonrpc":"2.0","id":1,"method":"ping"},)" + add + "]",
                                 OS::Environment(entries.data()),
                                 [](std::string_view) { return false; }));
  EXPECT_TRUE(stage.call("grab", R"({"name":"late"})").isError);
  EXPECT_EQ(stage.answerTo(R"([{"jsonrpc":"2.0","method":"notifications/initialized"}])"), "");
}

TEST(Protocol, ListsToolsWithSchemas) {
  const MemoryStage stage;
  const JSON::Object answer = unit::parsedObject(
      stage.answerTo(R"({"jsonrpc":"2.0","id":1,"method":"tools/list","params":{}})"));
  const JSON::Array& tools = *answer.find("result")->object()->find("tools")->array();
  std::string names;
  for (const JSON::Value& tool : tools) {
    names += *tool.object()->find("name")->string() + " ";
    EXPECT_FALSE(tool.object()->find("description")->string()->empty());
    const JSON::Object* const schema = JSON::objectOf(tool.object()->find("inputSchema"));
    ASSERT_NE(schema, nullptr) << names;
    EXPECT_TRUE(JSON::isText(schema->find("type"), "object"));
    EXPECT_NE(JSON::objectOf(schema->find("properties"))->find("cwd"), nullptr) << names;
  }
  EXPECT_EQ(names, "rules_get memory_get_relevant memory_add grab ");
}

}  // namespace

}  // namespace quillstead::server::test
