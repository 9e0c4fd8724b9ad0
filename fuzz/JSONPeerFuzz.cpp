// Any bytes as a JSON document: our reader takes what an independent one takes, refuses what it
// refuses, and finds the same in it.
#include "Property.h"

#include <boost/json/src.hpp>

#include <algorithm>

using namespace quillstead;

namespace {

namespace peer = boost::json;

bool isSame(JSON::View ours, const peer::value& theirs);

bool isSame(JSON::ArrayView ours, const peer::array& theirs) {
  return std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(),
                    [](JSON::View one, const peer::value& other) { return isSame(one, other); });
}

bool isSame(JSON::ObjectView ours, const peer::object& theirs) {
  return ours.size() == theirs.size() &&
         std::all_of(ours.members().begin(), ours.members().end(),
                     [&](const JSON::MemberView& member) {
                       const peer::value* const value = theirs.if_contains(member.key);
                       return value != nullptr && isSame(member.value, *value);
                     });
}

/// The peer rounds what does not fit its kinds of numbers in its own way.
bool isSame(JSON::Number ours, const peer::value& theirs) {
  if (!theirs.is_number()) return false;
  const std::optional<std::int64_t> integer = ours.integer();
  return !integer || (theirs.is_int64() && theirs.get_int64() == *integer);
}

bool isSame(JSON::View ours, const peer::value& theirs) {
  if (const auto object = ours.object())
    return theirs.is_object() && isSame(*object, theirs.get_object());
  if (const auto array = ours.array())
    return theirs.is_array() && isSame(*array, theirs.get_array());
  if (const auto text = ours.string())
    return theirs.is_string() && std::string_view(theirs.get_string()) == *text;
  if (const auto boolean = ours.boolean()) return theirs.is_bool() && theirs.get_bool() == *boolean;
  if (const auto number = ours.number()) return isSame(*number, theirs);
  return theirs.is_null();
}

/// Other encodings than UTF-8 without a mark are ours alone.
bool isPlainUTF8(std::string_view bytes) {
  return bytes.find('\0') == std::string_view::npos && !bytes.starts_with("\xEF\xBB\xBF") &&
         !bytes.starts_with("\xFE\xFF") && !bytes.starts_with("\xFF\xFE");
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view document = Fuzz::bytes(data, size);
  if (!isPlainUTF8(document)) return 0;

  peer::parse_options options;
  options.max_depth = JSON::maximumDepth;
  peer::error_code error;
  const peer::value theirs = peer::parse(document, error, {}, options);
  // Ours has no limit to the exponent, and wants a container at the top.
  if (error == peer::error::exponent_overflow) return 0;
  const bool isTaken = !error && (theirs.is_object() || theirs.is_array());

  const std::optional<JSON::Document> ours = JSON::read(document);
  Fuzz::require(ours.has_value() == isTaken, "both take or both refuse a document");
  Fuzz::require(!ours || isSame(ours->root(), theirs), "both find the same in it");
  return 0;
}
