#include "hook/PretoolAnswer.h"

#include "hook/FailOpenBelt.h"
#include "hook/Harness/Payload.h"
#include "hook/StackOverflowProbe.h"
#include "hook/StandardInput.h"
#include "support/JSON/Writer.h"

#include <utility>

namespace quillstead::hook::PretoolAnswer {

namespace {

constexpr std::string_view letThrough = "{}";

}  // namespace

void serve(const OS::Environment& environment, Stamp stamp, Decision decision) {
  FailOpenBelt::arm(letThrough);
  StackOverflowProbe::recurseIfAsked(environment);

  std::optional<std::string> input = StandardInput::readAll();
  FailOpenBelt::answerAndEnd(input ? document(*std::move(input), stamp, decision)
                                   : std::string(letThrough));
}

std::string document(std::string input, Stamp stamp, Decision decision) {
  const std::optional<JSON::Document> payload = Payload::read(input);
  std::optional<JSON::Object> answer = payload ? stamp(payload->object(), decision) : std::nullopt;
  if (!answer) return std::string(letThrough);
  return JSON::write(*std::move(answer), JSON::Slashes::plain, std::move(input));
}

}  // namespace quillstead::hook::PretoolAnswer
