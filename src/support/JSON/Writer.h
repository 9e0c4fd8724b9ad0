#pragma once

#include "support/JSON/Value.h"

#include <string>

namespace quillstead::JSON {

/// How "/" stands in written texts: as it is, or as "\/".
enum class Slashes { plain, escaped };

/// `value` as one compact JSON document in UTF-8: no white space, members in their order, numbers
/// as they were read. A byte sequence that is not UTF-8 goes out as U+FFFD.
std::string write(const Value& value, Slashes slashes);

}  // namespace quillstead::JSON
