// Any bytes as the payload of a tool call. QUILLSTEAD_FUZZ_STAMP names the stamp, one a program.
#include "Property.h"
#include "hook/PretoolAnswer.h"
#include "hook/SessionStamp.h"
#include "hook/SubagentStamp.h"

using namespace quillstead;
using namespace quillstead::hook;
namespace Stamp = QUILLSTEAD_FUZZ_STAMP;

namespace {

std::optional<JSON::ObjectView> updatedInput(JSON::ObjectView answer) {
  if (const auto updated = answer.find("updated_input").object()) return updated;
  const auto inner = answer.find("hookSpecificOutput").object();
  return inner ? inner->find("updatedInput").object() : std::nullopt;
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view payload = Fuzz::bytes(data, size);
  const std::string document =
      PretoolAnswer::document(std::string(payload), Stamp::answer, Decision::none);
  if (document == "{}") return 0;

  const JSON::Document answer = Fuzz::answerObject(document);
  const std::optional<JSON::Document> call = JSON::read(payload);
  Fuzz::require(call && call->root().object(), "only a call that can be read is stamped");
  const auto given = call->object().find("tool_input").object();
  const auto updated = updatedInput(answer.object());
  Fuzz::require(given && updated, "a stamped call had an input and has one");

  const bool isTask = call->object().find("tool_name").string() == "Task";
  const std::string_view changed = isTask ? "prompt" : Stamp::key;
  const auto stamped = updated->find(changed).string();
  Fuzz::require(stamped.has_value(), "a stamped call carries the stamp");
  JSON::Object expected(*given);
  expected.set(changed, *stamped);
  Fuzz::require(JSON::write(JSON::View(*updated), JSON::Slashes::plain) ==
                    JSON::write(expected, JSON::Slashes::plain),
                "nothing but the stamp is changed");
  return 0;
}
