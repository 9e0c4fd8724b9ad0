#pragma once

#include "support/JSON/Value.h"

#include <string>

namespace quillstead::JSON {

/// How "/" stands in written strings: as it is, or as "\/".
enum class Slashes { plain, escaped };

/// `value` as one compact JSON document in UTF-8: no white space, members in their order, numbers
/// as they were read. A byte sequence that is not UTF-8 goes out as U+FFFD. The document is written
/// into the memory of `reused`, whose content does not matter: for large documents, hand in a text
/// that is no longer needed.
std::string write(const Value& value, Slashes slashes, std::string reused = {});

}  // namespace quillstead::JSON
