#include "support/JSONC/Parser.h"

#include "support/JSON/Reader.h"

#include <algorithm>
#include <utility>

namespace quillstead::JSONC {

namespace {

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

bool isWordByte(char byte) {
  return isDigit(byte) || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         byte == '_' || byte == '+' || byte == '-' || byte == '.';
}

/// Parses until the first error, which is then in `failure`.
class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  std::variant<std::optional<Node>, Failure> parse() {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text_.starts_with(mark)) place_ = mark.size();
    std::optional<Node> root;
    if (skip() && !isAtEnd()) {
      root.emplace();
      if (value(*root, 0) && skip() && !isAtEnd()) fail("nothing may follow the value");
    }
    if (failure_) return *std::move(failure_);
    return root;
  }

 private:
  [[nodiscard]] bool isAtEnd() const { return place_ == text_.size(); }
  [[nodiscard]] char here() const { return isAtEnd() ? '\0' : text_[place_]; }

  bool fail(std::string what) {
    if (!failure_) failure_ = Failure{.place = place_, .what = std::move(what)};
    return false;
  }

  bool skip() {
    const Trivia trivia = skipTrivia(text_, place_);
    place_ = trivia.next;
    return !trivia.isCut || fail("this comment does not end");
  }

  bool value(Node& node, std::size_t depth) {
    node.begin = place_;
    switch (here()) {
      case '{':
      case '[':
        return container(node, depth);
      case '"':
        node.kind = Kind::string;
        if (!string()) return false;
        break;
      default:
        if (!word(node)) return false;
    }
    node.end = place_;
    return true;
  }

  bool container(Node& node, std::size_t depth) {
    const bool isObject = here() == '{';
    if (depth == maximumDepth) return fail("too many containers within containers");
    node.kind = isObject ? Kind::object : Kind::array;
    const char close = isObject ? '}' : ']';
    ++place_;
    for (;;) {
      if (!skip()) return false;
      if (here() == close) break;
      if (!node.items.empty() && !node.items.back().comma) {
        return fail(std::string("a comma or \"") + close + "\" is missing");
      }
      Item& item = node.items.emplace_back();
      item.begin = place_;
      if (isObject && !key(item)) return false;
      if (!value(item.value, depth + 1) || !skip()) return false;
      if (here() == ',') item.comma = place_++;
    }
    node.end = ++place_;
    return true;
  }

  /// The key, the colon, and the white space and comments before the value.
  bool key(Item& member) {
    if (here() != '"') return fail(isAtEnd() ? "\"}\" is missing" : "a key in quotes is missing");
    const std::size_t begin = place_;
    if (!string()) return false;
    member.key = unescaped(text_.substr(begin, place_ - begin));
    if (!skip()) return false;
    if (here() != ':') return fail("a colon is missing");
    member.colon = place_++;
    return skip();
  }

  bool string() {
    const std::size_t begin = place_++;
    while (here() != '"') {
      if (isAtEnd()) {
        place_ = begin;
        return fail("this string does not end");
      }
      if (static_cast<unsigned char>(here()) < 0x20) {
        return fail("a control character must be escaped");
      }
      if (here() == '\\' && !escape()) return false;
      ++place_;
    }
    ++place_;
    return true;
  }

  /// Stops at the last byte of the escape.
  bool escape() {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::size_t digits = 4;
    const std::string_view rest = text_.substr(place_ + 1);
    if (!rest.empty() && letters.find(rest.front()) != std::string_view::npos) {
      ++place_;
      return true;
    }
    const bool isCode = rest.starts_with('u') && rest.size() > digits &&
                        rest.substr(1, digits).find_first_not_of("0123456789abcdefABCDEF") ==
                            std::string_view::npos;
    if (!isCode) return fail("there is no such escape");
    place_ += 1 + digits;
    return true;
  }

  /// true, false, null or a number.
  bool word(Node& node) {
    std::size_t end = place_;
    while (end < text_.size() && isWordByte(text_[end])) ++end;
    const std::string_view word = text_.substr(place_, end - place_);
    if (word == "true" || word == "false") {
      node.kind = Kind::boolean;
    } else if (word == "null") {
      node.kind = Kind::null;
    } else if (isNumber(word)) {
      node.kind = Kind::number;
    } else {
      return fail("a value is missing");
    }
    place_ = end;
    return true;
  }

  static bool isNumber(std::string_view word) {
    const auto digits = [&word] {
      const std::size_t count = std::min(word.find_first_not_of("0123456789"), word.size());
      word.remove_prefix(count);
      return count;
    };
    if (word.starts_with('-')) word.remove_prefix(1);
    const bool startsWithZero = word.starts_with('0');
    const std::size_t whole = digits();
    if (whole == 0 || (startsWithZero && whole > 1)) return false;
    if (word.starts_with('.')) {
      word.remove_prefix(1);
      if (digits() == 0) return false;
    }
    if (word.starts_with('e') || word.starts_with('E')) {
      word.remove_prefix(1);
      if (word.starts_with('+') || word.starts_with('-')) word.remove_prefix(1);
      if (digits() == 0) return false;
    }
    return word.empty();
  }

  std::string_view text_;
  std::size_t place_ = 0;
  std::optional<Failure> failure_;
};

}  // namespace

Trivia skipTrivia(std::string_view text, std::size_t begin) {
  Trivia trivia{.next = begin,
                .contentEnd = begin,
                .hasComment = false,
                .endsWithLineComment = false,
                .isCut = false};
  while (trivia.next < text.size()) {
    const std::string_view rest = text.substr(trivia.next);
    if (isBlank(rest.front()) || isLineEnd(rest.front())) {
      ++trivia.next;
      continue;
    }
    const bool isLine = rest.starts_with("//");
    if (!isLine && !rest.starts_with("/*")) break;
    if (isLine) {
      trivia.next += std::min(rest.find_first_of("\r\n"), rest.size());
    } else {
      const std::size_t end = rest.find("*/", 2);
      trivia.isCut = end == std::string_view::npos;
      if (trivia.isCut) break;
      trivia.next += end + 2;
    }
    trivia.contentEnd = trivia.next;
    trivia.hasComment = true;
    trivia.endsWithLineComment = isLine;
  }
  return trivia;
}

std::variant<std::optional<Node>, Failure> parse(std::string_view text) {
  return Parser(text).parse();
}

std::string unescaped(std::string_view token) {
  const std::string_view inside = token.substr(1, token.size() - 2);
  if (inside.find('\\') == std::string_view::npos) return std::string(inside);
  // The reader refuses half a surrogate pair, which is not a character.
  const auto read = JSON::read("[" + std::string(token) + "]");
  const auto elements = read ? read->root().elements() : JSON::ArrayView();
  return std::string(elements.empty() ? inside : *elements.front().string());
}

}  // namespace quillstead::JSONC
