#include "cli/Telemetry/Plots.h"

#include "cli/Telemetry/LogReport.h"
#include "cli/Wording.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillstead::cli::Plots {

namespace {

// The size of an upright phone screen, so that letters are not scaled there.
constexpr double width = 340;
constexpr double height = 190;
constexpr double left = 44;
constexpr double right = 8;
constexpr double top = 10;
constexpr double bottom = 24;

/// A coordinate with one decimal.
std::string place(double coordinate) {
  constexpr double tenth = 10;
  const long tenths = std::lround(coordinate * tenth);
  std::string text = std::to_string(tenths / 10);
  if (tenths % 10 != 0) text.append(".").append(std::to_string(std::labs(tenths % 10)));
  return text;
}

std::string svg(std::string_view label, double tall, const std::string& content) {
  return R"(<svg viewBox="0 0 )" + place(width) + " " + place(tall) +
         R"(" role="img" aria-label=")" + escaped(label) + "\">\n" + content + "</svg>\n";
}

std::string text(double x, double y, std::string_view anchor, const std::string& content) {
  return "<text x=\"" + place(x) + "\" y=\"" + place(y) + "\" text-anchor=\"" +
         std::string(anchor) + "\">" + escaped(content) + "</text>\n";
}

std::string title(const std::string& content) { return "<title>" + escaped(content) + "</title>"; }

std::string bar(std::string_view name, double x, double y, double wide, double tall,
                const std::string& told) {
  return "<rect class=\"" + std::string(name) + "\" x=\"" + place(x) + "\" y=\"" + place(y) +
         "\" width=\"" + place(wide) + "\" height=\"" + place(tall) + "\">" + title(told) +
         "</rect>\n";
}

/// The smallest of 1, 2, 5, 10, 20, 50, … that is not below `number`.
std::int64_t rounded(std::int64_t number) {
  constexpr std::array<std::int64_t, 3> steps{1, 2, 5};
  for (std::int64_t decade = 1;; decade *= 10) {
    for (const std::int64_t step : steps) {
      if (step * decade >= number) return step * decade;
    }
  }
}

/// The upward axis of a plot, from 0 to at least `most`.
class Scale {
 public:
  explicit Scale(std::int64_t most) {
    constexpr std::int64_t lines = 4;
    step_ = rounded(std::max<std::int64_t>((most + lines - 1) / lines, 1));
    most_ = (std::max<std::int64_t>(most, 1) + step_ - 1) / step_ * step_;
  }

  [[nodiscard]] double y(std::int64_t number) const {
    const double part = static_cast<double>(number) / static_cast<double>(most_);
    return height - bottom - part * (height - top - bottom);
  }

  /// The grid lines and their numbers.
  [[nodiscard]] std::string drawn() const {
    std::string lines;
    for (std::int64_t number = 0; number <= most_; number += step_) {
      lines += R"(<line class="grid" x1=")" + place(left) + "\" x2=\"" + place(width - right) +
               "\" y1=\"" + place(y(number)) + "\" y2=\"" + place(y(number)) + "\"/>\n";
      lines += text(left - 4, y(number) + 3, "end", Wording::grouped(number));
    }
    return lines;
  }

 private:
  std::int64_t step_;
  std::int64_t most_;
};

struct Point {
  double x;
  double y;
  std::string told;
};

/// A line through the points, and a mark at each.
std::string series(const std::string& name, const std::vector<Point>& points) {
  const std::string radius = points.size() > 120 ? "1" : "2.5";
  std::string line;
  std::string marks;
  for (const Point& point : points) {
    line.append(line.empty() ? "" : " ").append(place(point.x)).append(",").append(place(point.y));
    marks.append("<circle class=\"").append(name).append("\" cx=\"").append(place(point.x));
    marks.append("\" cy=\"").append(place(point.y)).append("\" r=\"").append(radius);
    marks.append("\">").append(title(point.told)).append("</circle>\n");
  }
  return "<polyline class=\"" + name + "-line\" points=\"" + line + "\"/>\n" + marks;
}

}  // namespace

std::string days(const LogFigures::Days& days) {
  constexpr std::int64_t median = 50;
  constexpr std::int64_t nearlyAll = 95;
  if (days.empty()) return "<p>No prompts.</p>\n";
  std::int64_t most = 0;
  for (const auto& [day, figures] : days)
    most = std::max(most, figures.whole.percentile(nearlyAll));
  const Scale scale(most);
  const auto first = days.begin()->first;
  const auto last = days.rbegin()->first;
  const double span = std::max<double>(static_cast<double>((last - first).count()), 1);
  constexpr double margin = 6;  ///< between the axis and the first mark
  const double wide = width - right - left - 2 * margin;

  std::vector<Point> medians;
  std::vector<Point> longs;
  for (const auto& [day, figures] : days) {
    const double part = static_cast<double>((day - first).count()) / span;
    const double x = left + margin + (first == last ? 0.5 : part) * wide;
    const std::int64_t middle = figures.whole.percentile(median);
    const std::int64_t upper = figures.whole.percentile(nearlyAll);
    const std::string told =
        LogReport::day(day) + ", " + Wording::grouped(figures.whole.count()) + " prompts: ";
    medians.push_back({x, scale.y(middle), told + "median " + Wording::grouped(middle) + " ms"});
    longs.push_back({x, scale.y(upper), told + "95 % within " + Wording::grouped(upper) + " ms"});
  }
  std::string content = scale.drawn() + series("p95", longs) + series("median", medians);
  content += text(first == last ? (left + width) / 2 : left, height - 8,
                  first == last ? "middle" : "start", LogReport::day(first));
  if (first != last) content += text(width - right, height - 8, "end", LogReport::day(last));
  return svg("Milliseconds of a run, by day", height, content);
}

std::string durations(const Quantiles& whole) {
  constexpr std::array<std::int64_t, 12> from{0, 1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000};
  constexpr std::int64_t second = 1'000;
  std::array<std::int64_t, from.size()> counts{};
  for (std::size_t at = 0; at < from.size(); ++at) {
    const bool isLast = at + 1 == from.size();
    counts[at] = whole.countBetween(from[at], isLast ? whole.longest() + 1 : from[at + 1]);
  }
  const Scale scale(*std::max_element(counts.begin(), counts.end()));
  const double wide = (width - left - right) / static_cast<double>(from.size());
  std::string content = scale.drawn();
  for (std::size_t at = 0; at < from.size(); ++at) {
    const double x = left + wide * static_cast<double>(at);
    const double y = scale.y(counts[at]);
    const std::string range = at + 1 == from.size() ? std::to_string(from[at]) + " ms and more"
                                                    : std::to_string(from[at]) + " to less than " +
                                                          std::to_string(from[at + 1]) + " ms";
    content += bar("runs", x + 1, y, wide - 2, scale.y(0) - y,
                   range + ": " + Wording::grouped(counts[at]));
    const bool inSeconds = from[at] >= second;
    content +=
        text(x, height - 8, "middle",
             inSeconds ? std::to_string(from[at] / second) + " s" : std::to_string(from[at]));
  }
  return svg("Runs by how long they took", height, content);
}

std::string misses(const std::vector<std::pair<std::string, std::int64_t>>& kinds) {
  if (kinds.empty()) return "<p>Nothing was missing.</p>\n";
  constexpr double rowHeight = 34;
  constexpr double barHeight = 10;
  constexpr double numbers = 60;  ///< room beside the longest bar
  std::int64_t most = 1;
  for (const auto& [kind, times] : kinds) most = std::max(most, times);
  std::string content;
  double y = 0;
  for (const auto& [kind, times] : kinds) {
    const double part = static_cast<double>(times) / static_cast<double>(most);
    const double wide = std::max(part * (width - numbers), 1.0);
    content += text(0, y + 12, "start", kind);
    content += bar("miss", 0, y + 17, wide, barHeight, kind + ": " + Wording::grouped(times));
    content += text(wide + 5, y + 26, "start", Wording::grouped(times));
    y += rowHeight;
  }
  return svg("Missing parts, and how often", y, content);
}

std::string escaped(std::string_view text) {
  std::string safe;
  for (const char character : Text::repaired(std::string(text))) {
    switch (character) {
      case '&':
        safe += "&amp;";
        break;
      case '<':
        safe += "&lt;";
        break;
      case '>':
        safe += "&gt;";
        break;
      case '"':
        safe += "&quot;";
        break;
      default:
        safe += character;
    }
  }
  return safe;
}

}  // namespace quillstead::cli::Plots
