#pragma once

#include "support/OS/Environment.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// Why a card matches a prompt.
struct CardReason {
  std::string_view store;  ///< "project" or "personal"
  std::string file;        ///< its name in the store's memory directory
  std::string title;
  std::vector<std::string> words;  ///< words of the prompt that the card has
};

namespace CardReasons {

/// The cards that our server returns for a prompt, best first.
std::vector<CardReason> find(const std::string& prompt, const std::string& directory,
                             const OS::Environment& environment);

}  // namespace CardReasons
}  // namespace quillstead::cli
