#pragma once

#include "../helpers/JSONLookups.h"
#include "support/JSON/Value.h"
#include "support/JSON/Writer.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// Whether the order of an object's members counts.
enum class Members { ordered, inAnyOrder };

/// True when both are the same, numbers to the letter. "1" and "1.0" differ.
bool isSame(const JSON::Value& left, const JSON::Value& right, Members members);

/// The document that `text` is; the test fails when it is none.
JSON::Value document(std::string_view text);

/// `text` as a JSON string, with its quotes.
std::string jsonString(std::string_view text);

/// True when the JSON document `text` has no white space between its tokens and each slash in it
/// stands as `slashes` says.
bool isCompact(std::string_view text, JSON::Slashes slashes);

/// The keys of the object that `text` begins with, as often as they are written there.
std::vector<std::string> writtenKeys(std::string_view text);

/// `object` without its member `key`.
JSON::Value without(const JSON::Object& object, std::string_view key);

/// A text that is the JSON document `expected`, whatever the order of members.
::testing::Matcher<const std::string&> isJSON(const std::string& expected);

/// The same with the members of objects in order.
::testing::Matcher<const std::string&> isOrderedJSON(const std::string& expected);

/// One line that holds a compact document, its slashes written `\/`, and its line feed.
::testing::Matcher<const std::string&> isAnswer(const std::string& expected);

/// The same with slashes as they are, which is how calls of tools are answered.
::testing::Matcher<const std::string&> isPretoolAnswer(const std::string& expected);

}  // namespace quillstead
