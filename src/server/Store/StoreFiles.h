#pragma once

#include "server/Store/Scope.h"
#include "support/OS/Descriptor.h"
#include "support/OS/File.h"

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Reads the files of a store, and nothing outside it. A symbolic link is followed only within the
/// store. Files that everyone can write are ignored, and so are, in a project's store, files that
/// are not the user's own.
namespace quillstead::server::StoreFiles {

inline constexpr std::size_t largestFile = 1'048'576;  ///< bytes; what is larger is left out
inline constexpr std::string_view cardSuffix = ".md";

/// The directory of the cards. Not open when it does not exist, cannot be read, or is ignored, such
/// as a link out of the store.
OS::Descriptor openCards(const Store& store);

/// The same; a missing directory is created.
OS::Descriptor makeCards(const Store& store);

/// True when that directory is a link out of the store, and therefore refused.
bool cardsLeadOut(const Store& store);

/// The names of possible cards: not hidden, and no links or directories where the file system shows
/// that. In no particular order; none when `cards` is not open.
void forEachCardName(const OS::Descriptor& cards, const std::function<void(const char*)>& visit);

/// The stamp of a card's file in the directory of such a store; absent when it is no regular file
/// or is skipped.
std::optional<OS::FileStamp> cardStamp(const OS::Descriptor& cards, Store::Kind kind,
                                       const char* name);

/// Why a file's text cannot be used.
enum class NoText {
  missing,
  outsideStore,
  someoneElses,
  everybodys,
  notAFile,
  tooLarge,
  binary,
  conflict,  ///< it contains git's conflict marks
  unreadable
};

/// The same as a text for the user: "it is not a file".
std::string_view explained(NoText reason);

/// A file's text as valid UTF-8, what was invalid replaced, without HTML comments, and its stamp. A
/// file with a zero byte is binary.
struct FileText {
  std::string text;
  OS::FileStamp stamp;
};
using TextOrReason = std::variant<FileText, NoText>;

/// True when the text contains git's conflict markers.
bool holdsConflict(std::string_view text);

TextOrReason readCard(const OS::Descriptor& cards, Store::Kind kind, const std::string& name);

/// The same, but links within the store are followed. `name` has no slashes.
TextOrReason readCardOrLink(const Store& store, const std::string& name);

TextOrReason readRules(const Store& store);

}  // namespace quillstead::server::StoreFiles

/// The personal store is private: directories 0700, files 0600.
namespace quillstead::server::PrivateFiles {

struct Wide {
  std::string path;
  mode_t mode;  ///< its permissions
};

/// What others can read or write in the store: its directory, `memory`, `rules.md`, `trusted` and
/// the cards, in this order. Files in a directory that others cannot enter are left out, and so are
/// symbolic links. The server never changes the mode of a file that it did not create.
std::vector<Wide> widerThanPrivate(const Store& personal);

}  // namespace quillstead::server::PrivateFiles
