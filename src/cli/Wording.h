#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// How numbers, lists and foreign texts are told to people.
namespace quillstead::cli::Wording {

/// `number` with a comma between every three digits.
std::string grouped(std::int64_t number);

/// "1 card", "1,024 cards". `what`: the thing in the singular.
std::string counted(std::int64_t number, const std::string& what);

std::string joined(const std::vector<std::string>& texts, std::string_view separator);

/// `text` with nothing in it that would steer a terminal: control characters but line feeds and
/// tabs are question marks.
std::string harmless(std::string_view text);

/// Likewise on one line, and without whatever is not ASCII.
std::string plain(std::string_view text);

}  // namespace quillstead::cli::Wording
