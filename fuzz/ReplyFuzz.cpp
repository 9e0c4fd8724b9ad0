// Any bytes as what a server wrote to its standard output.
#include "Property.h"
#include "hook/Lanes/MemoryLane.h"
#include "hook/Lanes/RulesLane.h"
#include "hook/MCP/MCPClient.h"

using namespace quillstead;
using namespace quillstead::hook;

namespace {

void requireSound(JSON::View value, std::string_view tag) {
  const auto fenced = MemoryLane::validFenced(value, tag);
  Fuzz::require(!fenced || (fenced->starts_with(tag) && Fuzz::isUTF8(*fenced)),
                "a fenced text begins with its tag");
}

void requireSoundNumbers(JSON::ObjectView meta) {
  const auto count = MemoryLane::validCount(meta.find("quillstead/cardCount"));
  Fuzz::require(!count || (*count >= 1 && *count <= 999), "a count is from 1 to 999");
  const auto span = RulesLane::validSpan(meta.find("quillstead/indexSpan"));
  Fuzz::require(!span || *span >= 1, "a span is at least 1");
  const auto spans = MemoryLane::validSpans(meta.find("quillstead/cardSpans"), count.value_or(0));
  if (!spans) return;
  Fuzz::require(spans->size() == static_cast<std::size_t>(count.value_or(0)),
                "a span for each card");
  for (const std::int64_t each : *spans) Fuzz::require(each >= 1, "a span is at least 1");
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  MCPReply reply = MCPReply::from(Fuzz::bytes(data, size));
  Fuzz::require(reply.text.has_value() != reply.miss.has_value(), "either a text or a reason");
  Fuzz::require(!reply.miss || *reply.miss == MCPReply::noEnvelope, "the reason is a known one");
  Fuzz::require(!reply.declineFast, "what was written never declines");

  requireSound(reply.meta.find("quillstead/shortcut"), "<quillstead-shortcut>");
  requireSound(reply.meta.find("quillstead/now"), "<quillstead-now>");
  const auto reason = MemoryLane::validMiss(reply.meta.find("quillstead/shortcutMiss"));
  Fuzz::require(!reason || (reason->size() <= 32 && Fuzz::isOneLine(*reason) &&
                            reason->find(' ') == std::string::npos),
                "a reason is one short word");
  requireSoundNumbers(reply.meta);
  if (reply.text) {
    Fuzz::require(Fuzz::isUTF8(*reply.text), "a text is UTF-8");
    Fuzz::requireEnvelopesOf(*reply.text);
  }
  return 0;
}
