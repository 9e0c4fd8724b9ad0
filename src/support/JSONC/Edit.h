#pragma once

#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Changes a document as a person would: what is added follows the layout around it, and no other
/// byte changes. `remove` undoes the others exactly, and needs no record of what they did.
///
/// For that, the added text itself shows whether its container was created with it or existed
/// before. An existing empty container first gets an empty line (on a single line: a space). For
/// the root it is the other way round, because many files contain only `{}`: a document that was
/// created ends with an empty line, and an existing root gets an empty line only if it would look
/// like one of these.
///
/// A value must not be added so deep that the document would be refused.
namespace quillstead::JSONC::Edit {

/// The state of the container after its item was removed.
enum class Left {
  others,      ///< it has other items, or comments
  emptyFound,  ///< it is empty, as it was before the item was added
  emptyMade,   ///< it is empty, and was created for the item
};

/// Adds a member after the last one. `object` is the path of an object.
Document addMember(const Document& document, std::span<const Step> object, std::string_view key,
                   const JSON::Value& value);

/// Adds an element after the last one. `array` is the path of an array.
Document addElement(const Document& document, std::span<const Step> array,
                    const JSON::Value& value);

/// Adds a root to a document without one.
Document addRoot(const Document& document, const JSON::Value& value);

/// Replaces the value at `path`.
Document replace(const Document& document, std::span<const Step> path, const JSON::Value& value);

struct Removed {
  Document document;
  Left left;
};

/// Removes the member or element at `path`, which is not empty.
Removed remove(const Document& document, std::span<const Step> path);

/// Removes a root that `addRoot` created, after `remove` has left it empty. Absent when the whole
/// document was created with it.
std::optional<Document> removeRoot(const Document& document);

}  // namespace quillstead::JSONC::Edit
