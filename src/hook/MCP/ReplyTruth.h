#pragma once

#include "support/JSON/View.h"

namespace quillstead::hook::ReplyTruth {

/// Whether a loosely typed value counts as true. False: null, a missing member, false, 0, and an
/// empty string, array or object. Every other string is true, whatever it says: a server may report
/// an error as any string.
bool isTruthy(JSON::View value);

}  // namespace quillstead::hook::ReplyTruth
