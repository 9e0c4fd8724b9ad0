#include "cli/Doctor.h"

#include "cli/Context.h"
#include "cli/Doctor/CodexTrust.h"
#include "cli/Doctor/HarnessChecks.h"
#include "cli/Doctor/LogChecks.h"
#include "cli/Doctor/ServerCheck.h"
#include "cli/Doctor/StoreChecks.h"
#include "cli/Setup/Harnesses.h"
#include "cli/Telemetry/LogFile.h"
#include "cli/Wording.h"
#include "support/JSON/Writer.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace quillstead::cli::Doctor {

namespace {

constexpr hook::Seconds wholeTime{20};
constexpr std::chrono::seconds serverTime{3};

std::vector<Check> checksOf(const Options& options, const Context& context) {
  const hook::Deadline deadline{.start = OS::MonotonicClock::now(), .allowance = wholeTime};
  const auto logNamed = LogPlace::named(context.places);
  const Programs programs = Programs::of(context.places, context.environment, logNamed);
  const std::vector<std::string> harnesses =
      Harnesses::chosen(options.harnesses, context.places, context.environment);

  std::vector<Check> checks{ServerCheck::run(context, serverTime)};
  for (const std::string& harness : harnesses) {
    std::vector<Check> found = HarnessChecks::run(harness, context, programs, deadline);
    std::move(found.begin(), found.end(), std::back_inserter(checks));
    if (harness == "codex") {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline.leash());
      checks.push_back(CodexTrust::run(
          context, std::min<std::chrono::milliseconds>(left, std::chrono::seconds(5))));
    }
  }
  checks.push_back(StoreChecks::personal(context, harnesses));
  checks.push_back(StoreChecks::project(context, harnesses));
  checks.push_back(LogChecks::file(context, logNamed));
  checks.push_back(LogChecks::recent(context, logNamed));
  return checks;
}

bool isWell(const std::vector<Check>& checks) {
  return std::none_of(checks.begin(), checks.end(),
                      [](const Check& check) { return check.status == Check::Status::fail; });
}

std::string json(const std::vector<Check>& checks) {
  JSON::Array list;
  for (const Check& check : checks) {
    list.emplace_back(JSON::objectOf({{"id", check.id},
                                      {"status", nameOf(check.status)},
                                      {"summary", check.summary},
                                      {"fix", check.fix}}));
  }
  return JSON::write(JSON::objectOf({{"version", QUILLSTEAD_VERSION},
                                     {"ok", isWell(checks)},
                                     {"checks", std::move(list)}}),
                     JSON::Slashes::plain) +
         "\n";
}

std::string mark(Check::Status status, const Console& console) {
  switch (status) {
    case Check::Status::ok:
      return console.coloured(Colour::green, "ok  ");
    case Check::Status::warn:
      return console.coloured(Colour::yellow, "warn");
    case Check::Status::fail:
      return console.coloured(Colour::red, "FAIL");
    case Check::Status::skip:
      break;
  }
  return console.coloured(Colour::faint, "skip");
}

std::string text(const std::vector<Check>& checks, const Console& console) {
  constexpr std::size_t idWidth = 19;
  std::string text;
  for (const Check& check : checks) {
    std::string id = check.id;
    id.resize(std::max(id.size(), idWidth), ' ');
    text += mark(check.status, console) + "  " + id + Wording::harmless(check.summary) + "\n";
    if (!check.fix.empty()) {
      text += std::string(6 + idWidth, ' ') + console.coloured(Colour::bold, "→ ") +
              Wording::harmless(check.fix) + "\n";
    }
  }
  return text;
}

}  // namespace

int run(const Options& options, const Context& context) {
  const std::vector<Check> checks = checksOf(options, context);
  context.console.print(options.json ? json(checks) : text(checks, context.console));
  const bool hasHarness = checks.size() > 5;
  if (!hasHarness && !options.json) {
    context.console.complain(std::string(Harnesses::noneIsThere));
  }
  return isWell(checks) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace quillstead::cli::Doctor
