#include "server/Rules/RuleBorders.h"

#include "server/Markdown/Markdown.h"
#include "support/Text/Lines.h"
#include "support/Text/Text.h"

namespace quillstead::server::RuleBorders {

namespace {

bool isIndented(std::string_view line) { return line.starts_with(' ') || line.starts_with('\t'); }

/// What has been seen of the text before the line that comes next.
struct Before {
  std::size_t end = 0;     ///< where the last line that is not blank ended
  bool blankLine = false;  ///< a blank line came after it
  bool leadsOn = true;     ///< that line belongs with what follows
};

bool beginsRule(std::string_view line, const Before& before) {
  return Markdown::isListItem(line) || Markdown::heading(line).has_value() ||
         (before.blankLine && !isIndented(line));
}

}  // namespace

std::vector<std::size_t> of(std::string_view text) {
  std::vector<std::size_t> borders;
  Before before;
  Markdown::CodeFence code;
  bool inCode = false;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = Text::takeLine(rest);
    const bool wasInCode = inCode;
    inCode = code.covers(line);
    if (Text::isBlank(line)) {
      before.blankLine = true;
      continue;
    }
    const bool mayBegin = !(wasInCode && inCode) && !before.leadsOn;
    if (mayBegin && beginsRule(line, before)) borders.push_back(before.end);
    const std::string_view trimmed = Text::trimmed(line);
    before = {.end = static_cast<std::size_t>(line.data() + line.size() - text.data()),
              .blankLine = false,
              .leadsOn = !inCode && (Markdown::heading(line) || trimmed.ends_with(':'))};
  }
  if (before.end > 0) borders.push_back(before.end);
  return borders;
}

}  // namespace quillstead::server::RuleBorders
