#include "cli/Setup/ShellCommand.h"

#include <algorithm>

namespace quillstead::cli {

namespace {

/// Splits a line into words.
class Words {
 public:
  explicit Words(std::string_view text) : text_(text) {}

  enum class Next { word, end, notPlain };

  Next next() {
    word_.clear();
    while (place_ < text_.size() && isBlank(text_[place_])) ++place_;
    begin_ = place_;
    if (place_ == text_.size()) return Next::end;
    if (text_[place_] == '#') return Next::notPlain;
    while (place_ < text_.size() && !isBlank(text_[place_])) {
      if (!piece()) return Next::notPlain;
    }
    return Next::word;
  }

  [[nodiscard]] const std::string& word() const { return word_; }
  [[nodiscard]] std::size_t begin() const { return begin_; }

 private:
  static bool isBlank(char byte) { return byte == ' ' || byte == '\t'; }

  /// One character of a word, or one quoted part of it.
  bool piece() {
    constexpr std::string_view special = "\n\r;|&<>()`*?[]{}!";
    const char byte = text_[place_++];
    if (byte == '\'') return singleQuoted();
    if (byte == '"') return doubleQuoted();
    if (byte == '\\') return escaped();
    if (special.find(byte) != std::string_view::npos || isSubstitution(byte)) return false;
    word_ += byte;
    return true;
  }

  [[nodiscard]] bool isSubstitution(char byte) const {
    return byte == '$' && place_ < text_.size() && text_[place_] == '(';
  }

  bool singleQuoted() {
    const std::size_t end = text_.find('\'', place_);
    if (end == std::string_view::npos) return false;
    word_.append(text_, place_, end - place_);
    place_ = end + 1;
    return true;
  }

  bool doubleQuoted() {
    constexpr std::string_view escapable = "\\\"$`";
    for (; place_ < text_.size(); ++place_) {
      char byte = text_[place_];
      if (byte == '"') {
        ++place_;
        return true;
      }
      if (byte == '`' || (byte == '$' && text_.substr(place_ + 1).starts_with('('))) return false;
      const bool isEscape = byte == '\\' && place_ + 1 < text_.size() &&
                            escapable.find(text_[place_ + 1]) != std::string_view::npos;
      if (isEscape) byte = text_[++place_];
      word_ += byte;
    }
    return false;
  }

  bool escaped() {
    if (place_ == text_.size() || text_[place_] == '\n') return false;
    word_ += text_[place_++];
    return true;
  }

  std::string_view text_;
  std::size_t place_ = 0;
  std::size_t begin_ = 0;
  std::string word_;
};

bool isNameByte(char byte) {
  return byte == '_' || (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
         (byte >= 'A' && byte <= 'Z');
}

bool isAssignment(std::string_view raw) {
  const std::size_t name = std::min(raw.find('='), raw.size());
  return name > 0 && name < raw.size() && !(raw.front() >= '0' && raw.front() <= '9') &&
         std::all_of(raw.begin(), raw.begin() + static_cast<std::ptrdiff_t>(name), isNameByte);
}

}  // namespace

std::optional<ShellCommand> ShellCommand::parse(std::string_view text) {
  ShellCommand command;
  Words words(text);
  for (;;) {
    switch (words.next()) {
      case Words::Next::notPlain:
        return std::nullopt;
      case Words::Next::end:
        if (command.program.empty()) return std::nullopt;
        return command;
      case Words::Next::word:
        break;
    }
    if (!command.program.empty()) {
      command.arguments.push_back(words.word());
    } else if (!isAssignment(text.substr(words.begin()))) {
      if (words.word().empty()) return std::nullopt;
      command.assignments = text.substr(0, words.begin());
      command.program = words.word();
    }
  }
}

bool ShellCommand::sets(std::string_view variable) const {
  std::string text = assignments;
  Words words(text);
  while (words.next() == Words::Next::word) {
    if (words.word().starts_with(std::string(variable) + "=")) return true;
  }
  return false;
}

std::string inSingleQuotes(std::string_view text) {
  std::string quoted = "'";
  for (const char byte : text) {
    if (byte == '\'') {
      quoted += "'\\''";
    } else {
      quoted += byte;
    }
  }
  return quoted + "'";
}

std::string quotedWhereNeeded(std::string_view text) {
  const bool isPlain = !text.empty() && std::all_of(text.begin(), text.end(), [](char byte) {
    return std::string_view("/._-").find(byte) != std::string_view::npos || isNameByte(byte);
  });
  return isPlain ? std::string(text) : inSingleQuotes(text);
}

}  // namespace quillstead::cli
