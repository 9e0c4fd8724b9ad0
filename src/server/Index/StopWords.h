#pragma once

#include <string_view>

/// Words so common in prompts that a card is not wanted for having them.
namespace quillstead::StopWords {

/// `word`: in lower case.
bool contains(std::string_view word);

}  // namespace quillstead::StopWords
