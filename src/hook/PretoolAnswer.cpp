#include "hook/PretoolAnswer.h"

#include "hook/FailOpenBelt.h"
#include "hook/StackOverflowProbe.h"
#include "hook/StandardInput.h"
#include "hook/StandardOutput.h"
#include "support/JSON/Writer.h"

namespace quillstead::PretoolAnswer {

namespace {

constexpr std::string_view letThrough = "{}";

}  // namespace

std::int32_t serve(const OS::Environment& environment, AnswerTo answerTo) {
  FailOpenBelt::arm(letThrough);
  StackOverflowProbe::recurseIfAsked(environment);

  const std::optional<std::string> input = StandardInput::readAll();
  const std::optional<std::string> answer = input ? answerTo(*input) : std::nullopt;
  StandardOutput::answer(answer ? std::string_view(*answer) : letThrough);
  return 0;
}

JSON::Object* objectAt(JSON::Object& object, std::string_view key) {
  JSON::Value* const value = object.find(key);
  return value ? value->object() : nullptr;
}

std::string written(JSON::Object document) {
  return JSON::write(std::move(document), JSON::Slashes::plain);
}

}  // namespace quillstead::PretoolAnswer
