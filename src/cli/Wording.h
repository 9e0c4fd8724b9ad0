#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Formats numbers, lists and text from elsewhere for people.
namespace quillstead::cli::Wording {

/// `number` with a comma between every three digits.
std::string grouped(std::int64_t number);

/// "1 card", "1,024 cards". `what`: the thing in the singular.
std::string counted(std::int64_t number, const std::string& what);

std::string joined(const std::vector<std::string>& texts, std::string_view separator);

/// `text` without terminal control: control characters except line feeds and tabs become question
/// marks.
std::string harmless(std::string_view text);

/// The same on one line, and in ASCII only.
std::string plain(std::string_view text);

}  // namespace quillstead::cli::Wording
