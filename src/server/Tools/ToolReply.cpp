#include "server/Tools/ToolReply.h"

#include <utility>

namespace quillstead {

JSON::Object asResult(ToolReply reply) {
  JSON::Array content;
  content.emplace_back(JSON::objectOf({{"type", "text"}, {"text", std::move(reply.text)}}));
  JSON::Object result = JSON::objectOf({{"content", std::move(content)}});
  if (reply.isError) result.set("isError", true);
  if (!reply.meta.empty()) result.set("_meta", std::move(reply.meta));
  return result;
}

}  // namespace quillstead
