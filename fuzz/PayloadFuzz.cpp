// Any bytes as the payload of a prompt. QUILLSTEAD_FUZZ_HARNESS names the adapter, one a program.
#include "Property.h"

using namespace quillstead;
using namespace quillstead::hook;

namespace {

void requireSound(const std::optional<std::string>& field) {
  if (!field) return;
  Fuzz::require(!Text::isBlank(*field), "an optional field is not blank");
  Fuzz::require(Fuzz::isUTF8(*field), "a field is UTF-8");
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view payload = Fuzz::bytes(data, size);
  const HarnessAdapter& adapter = *Harnesses::named(QUILLSTEAD_FUZZ_HARNESS);
  const std::optional<HookInput> input = adapter.parse(payload);
  const std::optional<JSON::Document> document = JSON::read(payload);
  const auto object = document ? document->root().object() : std::nullopt;

  const bool isRefused = !object || (harnessFacts(adapter.name()).refusesCursorsPayload &&
                                     object->find("cursor_version").exists());
  Fuzz::require(input.has_value() != isRefused,
                "every object is taken, but Cursor's where its own hook has it");
  if (!input) return 0;

  Fuzz::require(input->prompt == object->find("prompt").string().value_or(""),
                "the prompt comes through as it is");
  Fuzz::require(Fuzz::isUTF8(input->prompt), "the prompt is UTF-8");
  requireSound(input->cwd);
  requireSound(input->sessionID);
  requireSound(input->transcriptPath);
  const std::string answer = adapter.envelope(input->prompt, "UserPromptSubmit");
  Fuzz::require(Fuzz::contextIn(adapter, answer) == input->prompt,
                "an answer carries the context unchanged");
  return 0;
}
