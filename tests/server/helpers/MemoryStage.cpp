#include "server/helpers/MemoryStage.h"

#include "server/Protocol.h"
#include "server/Session/SessionState.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quillstead::server::test {

std::string Answer::metaText(std::string_view key) const {
  const std::string* const found = JSON::textOf(meta.find(key));
  return found ? *found : "";
}

std::optional<std::int64_t> Answer::metaNumber(std::string_view key) const {
  const JSON::Value* const value = meta.find(key);
  return value && value->number() ? value->number()->integer() : std::nullopt;
}

std::vector<std::int64_t> Answer::metaNumbers(std::string_view key) const {
  std::vector<std::int64_t> numbers;
  const JSON::Array* const array = JSON::arrayOf(meta.find(key));
  if (!array) return numbers;
  for (const JSON::Value& value : *array) numbers.push_back(value.number()->integer().value_or(0));
  return numbers;
}

Answer answerIn(std::string_view line) {
  const JSON::Object message = unit::parsedObject(line);
  Answer answer;
  if (const JSON::Object* const error = JSON::objectOf(message.find("error"))) {
    answer.errorCode = error->find("code")->number()->integer();
    answer.text = *error->find("message")->string();
    return answer;
  }
  const JSON::Object* const result = JSON::objectOf(message.find("result"));
  if (!result) {
    ADD_FAILURE() << "no result in " << line;
    return answer;
  }
  answer.text = *result->find("content")->array()->front().object()->find("text")->string();
  answer.isError = result->find("isError") != nullptr;
  if (const JSON::Object* const meta = JSON::objectOf(result->find("_meta"))) answer.meta = *meta;
  return answer;
}

MemoryStage::MemoryStage() {
  set("HOME", path("home"));
  set("QUILLSTEAD_TRUST", path("project"));
  std::filesystem::create_directories(path("home"));
  std::filesystem::create_directories(path("project/.quillstead"));
}

void MemoryStage::write(const std::string& name, std::string_view text) const {
  std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
  unit::writeFile(path(name), text);
}

void MemoryStage::writePersonalCard(const std::string& name, std::string_view text) const {
  write("home/.quillstead/memory/" + name, text);
}

void MemoryStage::writeProjectCard(const std::string& name, std::string_view text) const {
  write("project/.quillstead/memory/" + name, text);
}

void MemoryStage::set(std::string_view name, std::string_view value) {
  unset(name);
  environment_.push_back(std::string(name).append("=").append(value));
}

void MemoryStage::unset(std::string_view name) {
  std::erase_if(environment_, [name](const std::string& entry) {
    return entry.starts_with(std::string(name).append("="));
  });
}

std::string MemoryStage::answerTo(std::string_view line) const {
  std::vector<const char*> entries;
  for (const std::string& entry : environment_) entries.push_back(entry.c_str());
  entries.push_back(nullptr);
  std::string answer;
  const auto collect = [&answer](std::string_view part) {
    answer += part;
    return true;
  };
  EXPECT_TRUE(Protocol::respond(line, OS::Environment(entries.data()), collect));
  return answer;
}

Answer MemoryStage::call(std::string_view tool, std::string_view arguments) const {
  JSON::Object all = unit::parsedObject(arguments);
  if (!all.find("cwd")) all.set("cwd", project());
  return answerIn(answerTo(callRequest(2, tool, JSON::write(all, JSON::Slashes::plain))));
}

std::vector<std::string> MemoryStage::recalled(std::string_view prompt) const {
  std::string arguments = R"({"prompt":)";
  const Answer answer = call("memory_get_relevant", arguments.append(jsonText(prompt)).append("}"));
  std::vector<std::string> titles;
  constexpr std::string_view mark = "\n\n## ";
  for (std::size_t at = answer.text.find(mark); at != std::string::npos;
       at = answer.text.find(mark, at + 1)) {
    const std::size_t begin = at + mark.size();
    titles.push_back(answer.text.substr(begin, answer.text.find('\n', begin) - begin));
  }
  return titles;
}

void MemoryStage::letTimePass(std::chrono::milliseconds time) const {
  for (const std::string& file : sessionFiles()) {
    auto state = SessionState::parse(unit::contentsOf(file));
    if (!state) continue;
    state->promptBegan -= time.count();
    state->rulesTime -= time.count();
    unit::writeFile(file, state->written());
  }
}

std::vector<std::string> MemoryStage::sessionFiles() const {
  std::vector<std::string> files;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(path(indexPlace()), none)) {
    if (entry.path().extension() == ".session") files.push_back(entry.path());
  }
  return files;
}

std::string MemoryStage::indexPlace() {
#if defined(__APPLE__)
  return "home/Library/Caches/quillstead";
#else
  return "home/.cache/quillstead";
#endif
}

std::vector<std::string> MemoryStage::indexFiles() const {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(path(indexPlace()))) {
    if (entry.path().extension() == ".sqlite") files.push_back(entry.path());
  }
  return files;
}

std::string MemoryStage::indexFile() const {
  const std::vector<std::string> files = indexFiles();
  EXPECT_EQ(files.size(), 1U);
  return files.empty() ? "" : files.front();
}

std::string jsonText(std::string_view text) {
  const std::string array = JSON::write(JSON::Array{JSON::Value(text)}, JSON::Slashes::plain);
  return array.substr(1, array.size() - 2);
}

std::string callRequest(std::int64_t id, std::string_view tool, std::string_view arguments) {
  std::string request = R"({"jsonrpc":"2.0","id":)" + std::to_string(id);
  request.append(R"(,"method":"tools/call","params":{"name":")").append(tool);
  return request.append(R"(","arguments":)").append(arguments).append("}}");
}

}  // namespace quillstead::server::test
