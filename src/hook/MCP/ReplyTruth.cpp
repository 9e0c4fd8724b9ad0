#include "hook/MCP/ReplyTruth.h"

namespace quillstead::hook::ReplyTruth {

bool isTruthy(JSON::View value) {
  if (const auto boolean = value.boolean()) return *boolean;
  if (const auto number = value.number()) return number->toDouble() != 0;
  if (const auto string = value.string()) return !string->empty();
  if (const auto array = value.array()) return !array->empty();
  if (const auto object = value.object()) return !object->empty();
  return false;
}

}  // namespace quillstead::hook::ReplyTruth
