#include "server/Tools/MemoryGetRelevant.h"

#include "server/Index/Index.h"
#include "server/Recall/Recall.h"

#include <cstdint>
#include <utility>

namespace quillstead::MemoryGetRelevant {

ToolOutcome run(Arguments& arguments, const OS::Environment& environment) {
  const std::optional<std::string> prompt = arguments.anyText("prompt");
  const Scope scope = arguments.scope(environment);
  if (arguments.flaw()) return BadArguments{*arguments.flaw()};
  if (!prompt) return BadArguments{"prompt must be a text"};

  Index index(scope, environment);
  Recall::Block block = Recall::block(scope, index.search(*prompt, Recall::mostCards));
  ToolReply reply;
  if (block.spans.empty()) {
    reply.text = "No card in memory matches.";
    reply.meta.set("quillstead/replyKind", "empty");
    return reply;
  }
  JSON::Array spans;
  for (const std::size_t span : block.spans) spans.emplace_back(static_cast<std::int64_t>(span));
  reply.text = std::move(block.text);
  reply.meta.set("quillstead/replyKind", "cards");
  reply.meta.set("quillstead/cardCount", static_cast<std::int64_t>(spans.size()));
  reply.meta.set("quillstead/cardSpans", std::move(spans));
  return reply;
}

}  // namespace quillstead::MemoryGetRelevant
