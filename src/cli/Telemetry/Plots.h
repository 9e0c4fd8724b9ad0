#pragma once

#include "cli/Telemetry/LogFigures.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Plots as SVG elements to stand in a page. Their colours are classes that the page gives a look,
/// and each mark has a title, which browsers show when one points at it.
namespace quillstead::cli::Plots {

/// The median and the 95th percentile of each day: a circle each, of the classes "median" and
/// "p95".
std::string days(const LogFigures::Days& days);

/// How many runs took how long: a bar of the class "runs" for each range of durations.
std::string durations(const Quantiles& whole);

/// A bar of the class "miss" for each of the kinds, in their order.
std::string misses(const std::vector<std::pair<std::string, std::int64_t>>& kinds);

/// `text` as it stands in HTML and SVG.
std::string escaped(std::string_view text);

}  // namespace quillstead::cli::Plots
