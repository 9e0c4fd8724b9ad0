#pragma once

#include "support/JSON/View.h"

namespace quillstead::hook::ReplyTruth {

/// Whether a loosely typed value counts as true. False: null, a missing member, false, 0, and an
/// empty string, array or object. Every other string is true, whatever it says: a server may report
/// an error as any string.
inline bool isTruthy(JSON::View value) {
  if (const auto boolean = value.boolean()) return *boolean;
  if (const auto number = value.number()) return number->toDouble() != 0;
  if (const auto string = value.string()) return !string->empty();
  if (const auto array = value.array()) return !array->empty();
  if (const auto object = value.object()) return !object->empty();
  return false;
}

}  // namespace quillstead::hook::ReplyTruth
