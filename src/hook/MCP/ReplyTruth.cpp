#include "hook/MCP/ReplyTruth.h"

namespace quillstead::ReplyTruth {

bool isTruthy(const JSON::Value* value) {
  if (!value || value->isNull()) return false;
  if (const bool* const boolean = value->boolean()) return *boolean;
  if (const JSON::Number* const number = value->number()) return number->approximation() != 0;
  if (const std::string* const text = value->text()) return !text->empty();
  if (const JSON::Array* const array = value->array()) return !array->empty();
  return !value->object()->empty();
}

}  // namespace quillstead::ReplyTruth
