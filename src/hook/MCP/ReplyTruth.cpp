#include "hook/MCP/ReplyTruth.h"

namespace quillstead::ReplyTruth {

bool isTruthy(JSON::View value) {
  if (const auto boolean = value.boolean()) return *boolean;
  if (const auto number = value.number()) return number->approximation() != 0;
  if (const auto text = value.text()) return !text->empty();
  if (const auto array = value.array()) return !array->empty();
  if (const auto object = value.object()) return !object->empty();
  return false;
}

}  // namespace quillstead::ReplyTruth
