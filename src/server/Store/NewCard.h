#pragma once

#include "server/Store/Scope.h"

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quillstead::server {

/// A card to write.
struct NewCard {
  std::string text;                  ///< not blank
  std::optional<std::string> title;  ///< by default the text's first heading or first line
  std::vector<std::string> tags;
  std::optional<std::string> session;  ///< who added it
  std::optional<std::string> subagent;
};

/// A card that was written.
struct AddedCard {
  std::string title;
  std::string fileName;
};

struct NotAdded {
  std::string reason;  ///< for the user
};

namespace NewCards {

/// The file's text: front matter, the title as a heading, the text.
std::string composed(const NewCard& card, std::chrono::system_clock::time_point created);

/// Writes the card to a new file with a name of its own. The file is complete or does not exist,
/// even if the process is killed.
std::variant<AddedCard, NotAdded> add(const Store& store, const NewCard& card);

}  // namespace NewCards

}  // namespace quillstead::server
