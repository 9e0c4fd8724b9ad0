#pragma once

// The TOML library, as all of our sources have to take it.
#define TOML_EXCEPTIONS 0
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// A TOML text and the positions of its lines. Lines and columns count from 1.
class TomlLines {
 public:
  explicit TomlLines(std::string text);

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] std::size_t count() const { return begins_.size(); }

  /// In bytes. The line after the last one begins at the end.
  [[nodiscard]] std::size_t begin(std::size_t line) const;

  /// The line with its line end.
  [[nodiscard]] std::string_view line(std::size_t number) const;

  /// In bytes. Columns count characters.
  [[nodiscard]] std::size_t place(const toml::source_position& position) const;

  [[nodiscard]] std::string lineEnd() const;

  /// Whether the line is a header: `[table]` or `[[element]]`.
  [[nodiscard]] bool isHeader(std::size_t number) const;

  /// Sets `marks[n]` for each line `n` with a value or header of the node, which begins on
  /// `firstLine`. `marks` needs `count() + 2` elements.
  void mark(const toml::node& node, std::size_t firstLine, std::vector<bool>& marks) const;

  /// The text without the marked lines, and without an empty line before them that would then be
  /// beside another one or at the end.
  [[nodiscard]] std::string without(const std::vector<bool>& marks) const;

 private:
  std::string text_;
  std::vector<std::size_t> begins_;
};

}  // namespace quillstead::cli
