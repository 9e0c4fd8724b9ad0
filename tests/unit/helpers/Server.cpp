#include "unit/helpers/Server.h"

#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

namespace quillstead::unit {

void Server::print(std::string_view tool, std::string_view output) const {
  writeFile(file(tool, "reply"), output);
}

void Server::answer(std::string_view tool, std::string_view result) const {
  const JSON::Object response =
      JSON::objectOf({{"jsonrpc", "2.0"}, {"id", 2}, {"result", parsed(result)}});
  print(tool, JSON::write(response, JSON::Slashes::plain) + "\n");
}

void Server::answer(std::string_view tool, std::string_view text, std::string_view meta) const {
  std::string result = R"({"content":[{"type":"text","text":)";
  result += JSON::write(text, JSON::Slashes::plain);
  answer(tool, result.append(R"(}],"_meta":)").append(meta).append("}"));
}

void Server::complain(std::string_view tool, std::string_view error) const {
  writeFile(file(tool, "error"), error);
}

void Server::exitWith(std::string_view tool, int status) const {
  writeFile(file(tool, "status"), std::to_string(status));
}

hook::MCPClient Server::client(std::string_view name) const {
  return {.executable = executable(), .clientName = name};
}

bool Server::wasCalled(std::string_view tool) const {
  return std::filesystem::exists(file(tool, "request"));
}

std::string Server::request(std::string_view tool) const {
  return contentsOf(file(tool, "request"));
}

JSON::Object Server::arguments(std::string_view tool) const {
  const std::string sent = request(tool);
  const JSON::Object call = parsedObject(sent.substr(sent.find('\n') + 1));
  const JSON::Object* const parameters = JSON::objectOf(call.find("params"));
  const JSON::Object* const arguments =
      parameters ? JSON::objectOf(parameters->find("arguments")) : nullptr;
  EXPECT_TRUE(arguments) << sent;
  return arguments ? *arguments : JSON::Object();
}

std::string Server::file(std::string_view tool, std::string_view kind) const {
  return directory_ / (std::string(tool) + "." + std::string(kind));
}

}  // namespace quillstead::unit
