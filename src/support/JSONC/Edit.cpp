#include "support/JSONC/Edit.h"

#include "support/JSONC/Layout.h"
#include "support/JSONC/Parser.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quillstead::JSONC::Edit {

namespace {

/// A replacement of some bytes by others.
struct Change {
  std::size_t begin;
  std::size_t end;
  std::string text;
};

/// The document after these changes, which are in order and do not overlap.
Document changed(const Document& document, const std::vector<Change>& changes) {
  std::string text;
  std::size_t place = 0;
  for (const Change& change : changes) {
    text.append(document.text(), place, change.begin - place).append(change.text);
    place = change.end;
  }
  text.append(document.text(), place);
  return std::get<Document>(Document::read(std::move(text)));
}

/// Where the closing bracket is.
std::size_t closing(const Node& container) { return container.end - 1; }

/// The end of the item and its comma.
std::size_t endOf(const Item& item) { return item.comma ? *item.comma + 1 : item.value.end; }

bool isRoot(const Document& document, const Node& node) {
  return document.root()->begin == node.begin;
}

/// Whether the text around the root is what `addRoot` writes.
bool isRootSurroundedAsMade(const Document& document) {
  const std::string_view text = document.text();
  const std::string lineEnd = Layout::of(document).lineEnd;
  const std::string_view before = text.substr(0, document.root()->begin);
  return text.substr(document.root()->end) == lineEnd + lineEnd &&
         (before.empty() || before.ends_with(lineEnd));
}

/// Adds an item, with its key if it has one, to a container.
class Addition {
 public:
  Addition(const Document& document, const Node& container, const std::string* key,
           const JSON::Value& value)
      : document_(document),
        container_(container),
        key_(key),
        value_(value),
        layout_(Layout::of(document)),
        margin_(marginAt(document.text(), container.begin)) {}

  [[nodiscard]] Document made() const {
    if (!container_.items.empty()) return changed(document_, behindLast());
    const Trivia inside = skipTrivia(document_.text(), container_.begin + 1);
    return changed(document_, {inside.hasComment ? behindComments(inside) : alone()});
  }

 private:
  [[nodiscard]] std::string item(const std::optional<std::string>& margin) const {
    return key_ != nullptr ? layout_.render(*key_, value_, margin) : layout_.render(value_, margin);
  }

  [[nodiscard]] std::string onNewLine(const std::string& margin) const {
    return layout_.lineEnd + margin + item(margin);
  }

  [[nodiscard]] std::vector<Change> behindLast() const {
    const std::string_view text = document_.text();
    const Item& last = container_.items.back();
    const Trivia rest = skipTrivia(text, endOf(last));

    std::string added;
    if (beginsLine(text, last.begin)) {
      added = onNewLine(marginAt(text, last.begin));
    } else if (rest.endsWithLineComment) {
      added = onNewLine(margin_ + layout_.indent);
    } else {
      const std::string_view lastText = document_.textOf(last.value);
      const bool isLong = lastText.find_first_of("\r\n") != std::string_view::npos;
      added = layout_.afterComma + item(isLong ? std::optional(margin_) : std::nullopt);
    }
    const std::size_t place = rest.contentEnd;
    if (last.comma) return {{place, place, added + ","}};
    if (place == last.value.end) return {{place, place, "," + added}};
    return {{last.value.end, last.value.end, ","}, {place, place, added}};
  }

  [[nodiscard]] Change behindComments(const Trivia& inside) const {
    const std::string_view blanks = std::string_view(document_.text())
                                        .substr(inside.contentEnd, inside.next - inside.contentEnd);
    const bool isOnLines = blanks.find_first_of("\r\n") != std::string_view::npos;
    const std::string added =
        isOnLines ? onNewLine(margin_ + layout_.indent) : " " + item(std::nullopt);
    return {inside.contentEnd, inside.contentEnd, added};
  }

  /// Adds it as the only item of the container.
  [[nodiscard]] Change alone() const {
    const std::size_t place = closing(container_);
    const bool isWhole = isRoot(document_, container_);
    if (!isWhole && !holderBeginsLine()) return {place, place, " " + item(std::nullopt)};
    const bool isMarked = !isWhole || isRootSurroundedAsMade(document_);
    return {place, place,
            (isMarked ? layout_.lineEnd : "") + onNewLine(margin_ + layout_.indent) +
                layout_.lineEnd + margin_};
  }

  /// Whether the container's own member or element is the first on its line.
  [[nodiscard]] bool holderBeginsLine() const {
    const Node* node = &*document_.root();
    for (;;) {
      const auto holder =
          std::find_if(node->items.begin(), node->items.end(), [this](const Item& item) {
            return item.value.begin <= container_.begin && container_.begin < item.value.end;
          });
      if (holder->value.begin == container_.begin)
        return beginsLine(document_.text(), holder->begin);
      node = &holder->value;
    }
  }

  const Document& document_;
  const Node& container_;
  const std::string* key_;
  const JSON::Value& value_;
  Layout layout_;
  std::string margin_;
};

/// Removes an item.
class Removal {
 public:
  Removal(const Document& document, const Node& container, const Item& item)
      : document_(document), text_(document.text()), container_(container), item_(item) {}

  [[nodiscard]] Removed made() const {
    if (container_.items.size() > 1) {
      const bool isFirst = &item_ == &container_.items.front();
      return {changed(document_, isFirst ? before() : behind()), Left::others};
    }
    const Trivia front = skipTrivia(text_, container_.begin + 1);
    const bool hasComment = front.hasComment || skipTrivia(text_, item_.value.end).hasComment ||
                            skipTrivia(text_, endOf(item_)).hasComment;
    if (!hasComment) return alone();
    return {changed(document_, withoutComma({fromContent(front), item_.value.end, ""})),
            Left::others};
  }

 private:
  /// Where the removal begins: at the end of what is before the item. If that is a line comment and
  /// more than a line end follows the item, the comment's line end has to stay.
  [[nodiscard]] std::size_t fromContent(const Trivia& front) const {
    if (!front.endsWithLineComment) return front.contentEnd;
    const std::size_t next = std::min(text_.find_first_not_of(" \t", endOf(item_)), text_.size());
    return next < text_.size() && isLineEnd(text_[next]) ? front.contentEnd : item_.begin;
  }

  /// Removes the item and its comma.
  [[nodiscard]] std::vector<Change> withoutComma(Change removal) const {
    if (!item_.comma) return {removal};
    if (!skipTrivia(text_, item_.value.end).hasComment) {
      removal.end = *item_.comma + 1;
      return {removal};
    }
    return {removal, {*item_.comma, *item_.comma + 1, ""}};
  }

  /// Removes the first of several items.
  [[nodiscard]] std::vector<Change> before() const {
    std::vector<Change> changes = withoutComma({item_.begin, item_.value.end, ""});
    if (changes.size() > 1) return changes;
    std::size_t& end = changes.front().end;
    while (isBlank(text_[end]) || isLineEnd(text_[end])) ++end;
    return changes;
  }

  [[nodiscard]] std::vector<Change> behind() const {
    const std::size_t comma = *(&item_ - 1)->comma;
    const Trivia front = skipTrivia(text_, comma + 1);
    const std::size_t begin = fromContent(front);
    if (item_.comma) return withoutComma({begin, item_.value.end, ""});
    if (begin == comma + 1) return {{comma, item_.value.end, ""}};
    return {{comma, comma + 1, ""}, {begin, item_.value.end, ""}};
  }

  /// Removes the only item of its container.
  [[nodiscard]] Removed alone() const {
    const std::string lineEnd = Layout::of(document_).lineEnd;
    const std::size_t open = container_.begin + 1;
    const std::string_view front = text_.substr(open, item_.begin - open);
    const std::string_view back = text_.substr(endOf(item_), closing(container_) - endOf(item_));
    if (item_.comma) return emptied({}, {});

    if (back.empty()) return emptied(front, " ");
    const std::size_t line = front.rfind(lineEnd);
    if (line == std::string_view::npos || !back.starts_with(lineEnd)) return emptied({}, {});
    return emptied(front.substr(0, line), lineEnd);
  }

  /// `rest`: the text left between the brackets. `mark`: how it ends if the container existed
  /// before.
  [[nodiscard]] Removed emptied(std::string_view rest, std::string_view mark) const {
    const bool isWhole = isRoot(document_, container_);
    const bool mayBeMade = !isWhole || isRootSurroundedAsMade(document_);
    const Left left = mayBeMade && rest.empty() ? Left::emptyMade : Left::emptyFound;
    if (mayBeMade && rest.ends_with(mark)) rest.remove_suffix(mark.size());
    return {changed(document_, {{container_.begin + 1, closing(container_), std::string(rest)}}),
            left};
  }

  const Document& document_;
  std::string_view text_;
  const Node& container_;
  const Item& item_;
};

const Item& itemAt(const Node& container, const Step& step) {
  if (const auto* key = std::get_if<std::string>(&step)) return *find(container, *key);
  return container.items[std::get<std::size_t>(step)];
}

}  // namespace

Document addMember(const Document& document, std::span<const Step> object, std::string_view key,
                   const JSON::Value& value) {
  const std::string name(key);
  return Addition(document, *document.at(object), &name, value).made();
}

Document addElement(const Document& document, std::span<const Step> array,
                    const JSON::Value& value) {
  return Addition(document, *document.at(array), nullptr, value).made();
}

Document addRoot(const Document& document, const JSON::Value& value) {
  const Layout layout = Layout::of(document);
  const std::size_t end = document.text().size();
  const std::string root = layout.render(value, "") + layout.lineEnd + layout.lineEnd;
  return changed(document, {{end, end, (end == 0 ? "" : layout.lineEnd) + root}});
}

Document replace(const Document& document, std::span<const Step> path, const JSON::Value& value) {
  const Node& node = *document.at(path);
  const bool isLong = document.textOf(node).find_first_of("\r\n") != std::string_view::npos;
  const auto margin = isLong ? std::optional(marginAt(document.text(), node.begin)) : std::nullopt;
  return changed(document, {{node.begin, node.end, Layout::of(document).render(value, margin)}});
}

Removed remove(const Document& document, std::span<const Step> path) {
  const Node& container = *document.at(path.first(path.size() - 1));
  return Removal(document, container, itemAt(container, path.back())).made();
}

std::optional<Document> removeRoot(const Document& document) {
  const std::string& text = document.text();
  const std::size_t begin = document.root()->begin;
  if (begin == 0) return std::nullopt;
  const std::size_t lineEnd = Layout::of(document).lineEnd.size();
  return changed(document, {{begin - lineEnd, text.size(), ""}});
}

}  // namespace quillstead::JSONC::Edit
