#include "cli/Setup/UnifiedDiff.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace quillstead::cli {

namespace {

using Lines = std::vector<std::string_view>;

Lines linesOf(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

/// A line that is kept, removed or added.
struct Step {
  char kind;  ///< ' ', '-' or '+'
  std::string_view line;
};

/// The shortest edit from one text to the other. When finding it would take too long: all old lines
/// are removed, then all new ones added.
class Way {
 public:
  Way(const Lines& before, const Lines& after) : before_(before), after_(after) {
    while (front_ < std::min(before.size(), after.size()) && before[front_] == after[front_]) {
      ++front_;
    }
    const std::size_t most = std::min(before.size(), after.size()) - front_;
    while (back_ < most && before[before.size() - 1 - back_] == after[after.size() - 1 - back_]) {
      ++back_;
    }
  }

  std::vector<Step> steps() {
    for (std::size_t i = 0; i < front_; ++i) steps_.push_back({' ', before_[i]});
    const std::size_t rows = before_.size() - back_ - front_;
    const std::size_t columns = after_.size() - back_ - front_;
    constexpr std::size_t most = 4'000'000;  // comparisons
    if (rows > 0 && columns > most / rows) {
      for (std::size_t i = 0; i < rows; ++i) goes(i);
      for (std::size_t i = 0; i < columns; ++i) comes(i);
    } else {
      middle(rows, columns);
    }
    for (std::size_t i = back_; i > 0; --i) steps_.push_back({' ', before_[before_.size() - i]});
    return std::move(steps_);
  }

 private:
  void goes(std::size_t row) { steps_.push_back({'-', before_[front_ + row]}); }
  void comes(std::size_t column) { steps_.push_back({'+', after_[front_ + column]}); }

  /// Fills a table: the number of lines that can be kept from each pair of positions on.
  void middle(std::size_t rows, std::size_t columns) {
    std::vector<std::vector<unsigned>> stay(rows + 1, std::vector<unsigned>(columns + 1));
    const auto isSame = [this](std::size_t row, std::size_t column) {
      return before_[front_ + row] == after_[front_ + column];
    };
    for (std::size_t row = rows; row-- > 0;) {
      for (std::size_t column = columns; column-- > 0;) {
        stay[row][column] = isSame(row, column)
                                ? stay[row + 1][column + 1] + 1
                                : std::max(stay[row + 1][column], stay[row][column + 1]);
      }
    }
    std::size_t row = 0;
    std::size_t column = 0;
    while (row < rows || column < columns) {
      if (row < rows && column < columns && isSame(row, column)) {
        steps_.push_back({' ', before_[front_ + row]});
        ++row;
        ++column;
      } else if (column == columns ||
                 (row < rows && stay[row + 1][column] >= stay[row][column + 1])) {
        goes(row++);
      } else {
        comes(column++);
      }
    }
  }

  const Lines& before_;
  const Lines& after_;
  std::size_t front_ = 0;  ///< lines at the start that are the same
  std::size_t back_ = 0;   ///< and at the end
  std::vector<Step> steps_;
};

std::string rangeOf(std::size_t linesBefore, std::size_t count) {
  return std::to_string(count == 0 ? linesBefore : linesBefore + 1) + "," + std::to_string(count);
}

void append(std::string& text, const Step& step) {
  text += step.kind;
  text += step.line;
  if (!step.line.ends_with('\n')) text += "\n\\ No newline at end of file\n";
}

std::string hunks(const std::vector<Step>& steps) {
  constexpr std::size_t context = 3;
  std::string text;
  std::size_t oldLine = 0;
  std::size_t newLine = 0;
  for (std::size_t i = 0; i < steps.size();) {
    // A hunk includes some lines before its first change and as many after its last.
    std::size_t first = i;
    while (first < steps.size() && steps[first].kind == ' ') ++first;
    if (first == steps.size()) break;
    std::size_t end = first + 1;
    for (std::size_t j = end; j < steps.size() && j - end < 2 * context; ++j) {
      if (steps[j].kind != ' ') end = j + 1;
    }
    const std::size_t begin = first - std::min(first - i, context);
    end = std::min(end + context, steps.size());
    oldLine += begin - i;
    newLine += begin - i;

    std::size_t removed = 0;
    std::size_t added = 0;
    std::string body;
    for (std::size_t j = begin; j < end; ++j) {
      if (steps[j].kind != '+') ++removed;
      if (steps[j].kind != '-') ++added;
      append(body, steps[j]);
    }
    text += "@@ -" + rangeOf(oldLine, removed) + " +" + rangeOf(newLine, added) + " @@\n" + body;
    oldLine += removed;
    newLine += added;
    i = end;
  }
  return text;
}

}  // namespace

std::string unifiedDiff(const std::string& path, const std::optional<std::string>& before,
                        const std::optional<std::string>& after) {
  if (before == after) return {};
  const Lines old = linesOf(before ? std::string_view(*before) : std::string_view());
  const Lines now = linesOf(after ? std::string_view(*after) : std::string_view());
  return "--- " + (before ? path : "/dev/null") + "\n+++ " + (after ? path : "/dev/null") + "\n" +
         hunks(Way(old, now).steps());
}

}  // namespace quillstead::cli
