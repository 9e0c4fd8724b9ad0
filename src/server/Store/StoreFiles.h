#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Descriptor.h"
#include "support/OS/FileContent.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

/// The files of a store, and the wall around them. A symbolic link within the store is followed
/// only to what is in the store as well. What everybody may write is passed over, and in a
/// project's store what is not the user's own as well.
namespace quillstead::server::StoreFiles {

inline constexpr std::size_t largestFile = 1'048'576;  ///< bytes; what is larger is left out
inline constexpr std::string_view cardSuffix = ".md";

/// The directory of the cards; not open when there is none, it may not be read, or it is passed
/// over, as a link out of the store is.
OS::Descriptor openCards(const Store& store);

/// The same, made first where it is missing.
OS::Descriptor makeCards(const Store& store);

/// True when that directory is refused because it is a link out of the store.
bool cardsLeadOut(const Store& store);

/// The names of what may be cards: not hidden, and no links or directories where the file system
/// tells them. In no certain order; none when `cards` is not open.
void forEachCardName(const OS::Descriptor& cards, const std::function<void(const char*)>& visit);

/// The stamp of a card's file in the directory of such a store; absent when it is no regular file
/// or is passed over.
std::optional<OS::FileStamp> cardStamp(const OS::Descriptor& cards, Store::Kind kind,
                                       const char* name);

/// Why a file's text is not to be had.
enum class NoText {
  missing,
  outsideStore,
  someoneElses,
  everybodys,
  notAFile,
  tooLarge,
  binary,
  conflict,  ///< git's marks of a merge conflict are in it
  unreadable
};

/// The same for the user's eyes: "it is not a file".
std::string_view explained(NoText reason);

/// A file's text as valid UTF-8, what was invalid replaced, without HTML comments, and its stamp. A
/// file with a zero byte is binary.
struct FileText {
  std::string text;
  OS::FileStamp stamp;
};
using TextOrReason = std::variant<FileText, NoText>;

TextOrReason readCard(const OS::Descriptor& cards, Store::Kind kind, const std::string& name);

/// Likewise, but a link within the store is followed. `name` is one name, without slashes.
TextOrReason readCardOrLink(const Store& store, const std::string& name);

TextOrReason readRules(const Store& store);

}  // namespace quillstead::server::StoreFiles
