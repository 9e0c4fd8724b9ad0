#pragma once

#include "support/JSON/Value.h"

#include <string>

namespace quillstead::JSON {

/// How "/" is written in strings: unchanged, or as "\/".
enum class Slashes { plain, escaped };

/// `value` as one compact JSON document in UTF-8: no white space, members in their order, numbers
/// as they were read. Invalid UTF-8 becomes U+FFFD. The document is written into the memory of
/// `reused`, whose content is overwritten: for large documents, pass a string that is no longer
/// needed.
std::string write(const Value& value, Slashes slashes, std::string reused = {});

}  // namespace quillstead::JSON
