#include "ServerScript.h"

#include "HookRun.h"
#include "JSONText.h"
#include "Workspace.h"
#include "support/JSON/Writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <csignal>
#include <filesystem>

namespace quillstead {

namespace {

constexpr std::string_view handshakeResponse =
    R"({"jsonrpc":"2.0","id":1,"result":{"protocolVersion":"2024-11-05","capabilities":{},)"
    R"("serverInfo":{"name":"scripted","version":"1"}}})";

const JSON::Object& parametersOf(const JSON::Value& request) {
  static const JSON::Object none;
  const JSON::Object* const parameters =
      request.object() ? JSON::objectOf(request.object()->find("params")) : nullptr;
  return parameters ? *parameters : none;
}

}  // namespace

bool ServerCall::isAlive() const {
  const OS::Descriptor file(open(lock.c_str(), O_RDWR | O_CLOEXEC));
  return file.isOpen() && flock(file.number(), LOCK_EX | LOCK_NB) != 0;
}

std::vector<JSON::Value> ServerCall::requests() const {
  std::vector<JSON::Value> requests;
  for (const std::string& line : piecesOf(input, '\n')) requests.push_back(document(line));
  return requests;
}

std::string ServerCall::tool() const {
  const auto all = requests();
  const std::string* const name =
      all.empty() ? nullptr : JSON::textOf(parametersOf(all.back()).find("name"));
  return name ? *name : "";
}

std::string ServerCall::toolArguments() const {
  const auto all = requests();
  const JSON::Value* const asked =
      all.empty() ? nullptr : parametersOf(all.back()).find("arguments");
  return asked ? JSON::write(*asked, JSON::Slashes::plain) : "";
}

ServerScript::ServerScript(std::string directory) : directory_(std::move(directory)) {
  std::filesystem::create_directories(directory_);
}

ServerScript::~ServerScript() {
  for (const ServerCall& call : calls()) {
    if (call.isAlive()) kill(call.process, SIGKILL);
  }
}

void ServerScript::set(std::string_view tool, std::string_view what, std::string_view value) {
  writeFile(directory_ + "/" + std::string(tool) + "." + std::string(what), value);
}

void ServerScript::set(std::string_view tool, std::string_view what, int value) {
  set(tool, what, std::to_string(value));
}

void ServerScript::set(std::string_view what) {
  writeFile(directory_ + "/" + std::string(what), "");
}

void ServerScript::answer(std::string_view tool, std::string_view text, std::string_view meta) {
  giveResult(tool, R"({"content":[{"type":"text","text":)" + jsonString(text) + R"(}],"_meta":)" +
                       std::string(meta) + "}");
}

void ServerScript::giveResult(std::string_view tool, std::string_view result) {
  set(tool, "output",
      std::string(handshakeResponse) + "\n" + R"({"jsonrpc":"2.0","id":2,"result":)" +
          std::string(result) + "}\n");
}

std::string ServerScript::callDirectory(std::size_t number) const {
  return directory_ + "/calls/" + std::to_string(number) + "/";
}

const std::vector<ServerCall>& ServerScript::calls() const {
  for (;;) {
    const std::string at = callDirectory(calls_.size());
    if (!std::filesystem::exists(at + "ready")) return calls_;
    calls_.push_back({.arguments = piecesOf(contentOf(at + "arguments"), '\0'),
                      .environment = piecesOf(contentOf(at + "environment"), '\0'),
                      .directory = contentOf(at + "directory"),
                      .ignored = contentOf(at + "ignored"),
                      .blocked = contentOf(at + "blocked"),
                      .descriptors = contentOf(at + "descriptors"),
                      .input = contentOf(at + "input"),
                      .process = std::stoi(contentOf(at + "process")),
                      .lock = at + "alive"});
  }
}

const ServerCall& ServerScript::awaitCall(std::size_t count) const {
  awaitThat([&] { return std::filesystem::exists(callDirectory(count - 1) + "ready"); });
  EXPECT_EQ(calls().size(), count);
  if (calls().size() != count) throw std::runtime_error("the server was not started as expected");
  return calls_.back();
}

}  // namespace quillstead
