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

  std::optional<std::string> input = StandardInput::readAll();
  const std::optional<std::string> answer = input ? answerTo(std::move(*input)) : std::nullopt;
  StandardOutput::answer(answer ? std::string_view(*answer) : letThrough);
  return 0;
}

std::string written(JSON::Object document, std::string reused) {
  return JSON::write(std::move(document), JSON::Slashes::plain, std::move(reused));
}

}  // namespace quillstead::PretoolAnswer
