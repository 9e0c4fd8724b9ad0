#pragma once

#include "support/JSON/View.h"

namespace quillstead::hook::ReplyTruth {

/// Whether a loosely typed value counts as true. False: null, a missing member, false, 0, and an
/// empty text, array or object. Every non-empty text is true, whatever it says: a server that
/// reports an error as any text is taken at its word.
bool isTruthy(JSON::View value);

}  // namespace quillstead::hook::ReplyTruth
