#pragma once

#include "support/JSON/Value.h"

namespace quillstead::ReplyTruth {

/// Whether a loosely typed value counts as true. False: null (also the null pointer, for a missing
/// member), false, 0, and an empty text, array or object. Every non-empty text is true, whatever it
/// says: a server that reports an error as any text is taken at its word.
bool isTruthy(const JSON::Value* value);

}  // namespace quillstead::ReplyTruth
