#pragma once

#include "cli/Telemetry/LogFigures.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Plots as SVG elements for a page. The page's style sheet sets the colours of their classes. Each
/// mark has a title, which browsers show under the pointer.
namespace quillstead::cli::Plots {

/// The median and the 95th percentile of each day, as circles of the classes "median" and "p95".
std::string days(const LogFigures::Days& days);

/// The number of runs for each range of durations, as bars of the class "runs".
std::string durations(const Quantiles& whole);

/// A bar of the class "miss" for each kind, in order.
std::string misses(const std::vector<std::pair<std::string, std::int64_t>>& kinds);

/// `text`, escaped for HTML and SVG.
std::string escaped(std::string_view text);

}  // namespace quillstead::cli::Plots
