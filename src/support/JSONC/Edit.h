#pragma once

#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Changes to a document as a person would make them: what is added follows the layout around it,
/// and no other byte changes. `remove` is the exact opposite of the others: of what they added it
/// leaves no byte, and needs no memory for that.
///
/// What was added says itself whether the container that holds it was made together with it or was
/// there before, and empty: into one that was there, an empty line (on a single line: a blank) goes
/// first. The root is the other way round, since `{}` is what many files hold: a document that was
/// made whole ends with an empty line, and only a root that would be taken for such a one gets an
/// empty line within.
///
/// No value may be added so deep that the document would be refused.
namespace quillstead::JSONC::Edit {

/// Where a document ends up without the item that was taken away.
enum class Left {
  others,      ///< its container has other items, or comments
  emptyFound,  ///< its container is empty, and was so before the item was added
  emptyMade,   ///< its container is empty, and was made for the item
};

/// Adds a member behind the last one. `object` leads to an object.
Document addMember(const Document& document, std::span<const Step> object, std::string_view key,
                   const JSON::Value& value);

/// Adds an element behind the last one. `array` leads to an array.
Document addElement(const Document& document, std::span<const Step> array,
                    const JSON::Value& value);

/// Adds the root that the document does not have.
Document addRoot(const Document& document, const JSON::Value& value);

/// Puts another value in the place of the one that `path` leads to.
Document replace(const Document& document, std::span<const Step> path, const JSON::Value& value);

struct Removed {
  Document document;
  Left left;
};

/// Takes away the member or element that `path`, which is not empty, leads to.
Removed remove(const Document& document, std::span<const Step> path);

/// Takes away a root that `addRoot` made, which is what `remove` says when it leaves the root
/// empty. Absent when the document was made with it, from nothing.
std::optional<Document> removeRoot(const Document& document);

}  // namespace quillstead::JSONC::Edit
