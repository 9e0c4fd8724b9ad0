#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Descriptor.h"
#include "support/OS/FileContent.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <variant>

/// The files of a store, and the wall around them: a symbolic link within the store is followed
/// only to what is in the store as well. The store's own directory may be a link.
namespace quillstead::StoreFiles {

inline constexpr std::size_t largestFile = 1'048'576;  ///< bytes; what is larger is left out
inline constexpr std::string_view cardSuffix = ".md";

/// The directory of the cards; not open when there is none, or it may not be read, or it is a link
/// out of the store.
OS::Descriptor openCards(const Store& store);

/// The same, made first where it is missing.
OS::Descriptor makeCards(const Store& store);

/// True when that directory is refused because it is a link out of the store.
bool cardsLeadOut(const Store& store);

/// The files that may be cards: regular, not hidden, no links. In no certain order; none when
/// `cards` is not open.
void forEachCard(const OS::Descriptor& cards,
                 const std::function<void(std::string_view name, OS::FileStamp stamp)>& visit);

/// Why a file's text is not to be had.
enum class NoText { missing, outsideStore, notAFile, tooLarge, binary, unreadable };

/// A file's text as valid UTF-8, what was invalid replaced, and its stamp. A file with a zero byte
/// is binary.
struct FileText {
  std::string text;
  OS::FileStamp stamp;
};
using TextOrReason = std::variant<FileText, NoText>;

TextOrReason readCard(const OS::Descriptor& cards, const std::string& name);

/// Likewise, but a link within the store is followed. `name` is one name, without slashes.
TextOrReason readCardOrLink(const Store& store, const std::string& name);

TextOrReason readRules(const Store& store);

}  // namespace quillstead::StoreFiles
