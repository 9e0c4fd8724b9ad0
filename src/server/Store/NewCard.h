#pragma once

#include "server/Store/Scope.h"

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quillstead::server {

/// A card that a caller wants remembered.
struct NewCard {
  std::string text;                  ///< not blank
  std::optional<std::string> title;  ///< by default the text's first heading or first line
  std::vector<std::string> tags;
  std::optional<std::string> session;  ///< who added it
  std::optional<std::string> subagent;
};

/// A card that is in its store now.
struct AddedCard {
  std::string title;
  std::string fileName;
};

struct NotAdded {
  std::string reason;  ///< for the user's eyes
};

namespace NewCards {

/// The file's text: front matter, the title as a heading, the text.
std::string composed(const NewCard& card, std::chrono::system_clock::time_point created);

/// Writes the card as a file of its own, under a name nobody else has. It is there whole or not at
/// all, whatever happens on the way.
std::variant<AddedCard, NotAdded> add(const Store& store, const NewCard& card);

}  // namespace NewCards

}  // namespace quillstead::server
