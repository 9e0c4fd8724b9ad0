// Any bytes as the payload of a tool call. QUILLSTEAD_FUZZ_STAMP names the stamp, one a program.
#include "Property.h"
#include "hook/SessionStamp.h"
#include "hook/SubagentStamp.h"

using namespace quillstead;
namespace Stamp = QUILLSTEAD_FUZZ_STAMP;

namespace {

const JSON::Object* updatedInput(const JSON::Object& answer) {
  if (const JSON::Object* const updated = JSON::objectOf(answer.find("updated_input"))) {
    return updated;
  }
  const JSON::Object* const inner = JSON::objectOf(answer.find("hookSpecificOutput"));
  return inner ? JSON::objectOf(inner->find("updatedInput")) : nullptr;
}

std::string written(const JSON::Object& object) {
  return JSON::write(JSON::Object(object), JSON::Slashes::plain);
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view payload = Fuzz::bytes(data, size);
  const std::optional<std::string> document = Stamp::answer(std::string(payload));
  if (!document) return 0;

  const JSON::Object answer = Fuzz::answerObject(*document);
  const std::optional<JSON::Value> call = JSON::read(payload);
  Fuzz::require(call && call->object(), "only a call that can be read is stamped");
  const JSON::Object* const given = JSON::objectOf(call->object()->find("tool_input"));
  const JSON::Object* const updated = updatedInput(answer);
  Fuzz::require(given && updated, "a stamped call had an input and has one");

  const bool isTask = JSON::isText(call->object()->find("tool_name"), "Task");
  const std::string_view changed = isTask ? "prompt" : Stamp::key;
  JSON::Object expected = *given;
  const JSON::Value* const stamped = updated->find(changed);
  Fuzz::require(stamped && stamped->text(), "a stamped call carries the stamp");
  expected.set(changed, *stamped->text());
  Fuzz::require(written(*updated) == written(expected), "nothing but the stamp is changed");
  return 0;
}
