#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// JSON documents of about the size asked for.
namespace quillstead::Documents {

/// One long text with an escape in forty characters.
inline std::string longText(std::size_t size) {
  constexpr std::string_view line = R"(the quick brown fox jumps over the lazy\n)";
  std::string document = R"({"text":")";
  document.reserve(size + line.size());
  while (document.size() + line.size() < size) document += line;
  return document + R"("})";
}

/// Many small values, as in a payload with much structure: about forty bytes each.
inline std::string manyValues(std::size_t size) {
  constexpr std::string_view element = R"({"path":"src/main.cpp","line":42,"ok":true},)";
  std::string document = R"({"items":[)";
  document.reserve(size + element.size());
  while (document.size() + element.size() < size) document += element;
  return document + "null]}";
}

}  // namespace quillstead::Documents
