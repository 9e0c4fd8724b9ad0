#include "cli/Recall.h"

#include "cli/CardReasons.h"
#include "cli/Context.h"
#include "cli/HookTrial.h"
#include "cli/Telemetry/LogReport.h"
#include "cli/Wording.h"
#include "hook/Harness/Harnesses.h"
#include "hook/MCP/MCPBinary.h"
#include "support/JSON/Writer.h"
#include "support/OS/Paths.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

namespace quillstead::cli::Recall {

namespace {

/// A piece of what goes out.
struct Part {
  std::string_view kind;  ///< "rules", "shortcut", "now", "memory" or "text"
  std::string text;
};

struct Fence {
  std::string_view opening;
  std::string_view closing;
  std::string_view kind;
};

constexpr std::array<Fence, 4> fences{
    Fence{"<user-rules>", "</user-rules>", "rules"},
    Fence{"<quillstead-shortcut>", "</quillstead-shortcut>", "shortcut"},
    Fence{"<quillstead-now>", "</quillstead-now>", "now"},
    Fence{"<quillstead-memory>", "</quillstead-memory>", "memory"}};

/// The text in its parts, each in its fence; what is in none is a part as well.
std::vector<Part> partsOf(std::string_view text) {
  std::vector<Part> parts;
  while (!text.empty()) {
    const auto* const fence = std::find_if(fences.begin(), fences.end(), [&](const Fence& each) {
      return text.starts_with(each.opening);
    });
    const bool isFenced = fence != fences.end();
    const std::size_t close = isFenced ? text.find(fence->closing) : std::string_view::npos;
    const std::size_t end =
        close == std::string_view::npos ? text.size() : close + fence->closing.size();
    parts.push_back({isFenced ? fence->kind : "text", std::string(text.substr(0, end))});
    text.remove_prefix(end);
    while (text.starts_with('\n')) text.remove_prefix(1);
  }
  return parts;
}

/// What one prompt brought.
struct Brought {
  const hook::HarnessAdapter& harness;
  std::string directory;
  HookTrial trial;
  std::vector<Part> parts;
  std::vector<CardReason> reasons;
  std::int64_t cardsCut = 0;
  std::vector<std::string> missed;  ///< fields of the trail

  [[nodiscard]] std::int64_t size() const {
    return static_cast<std::int64_t>(trial.context.value_or("").size());
  }
  [[nodiscard]] bool isSent(std::size_t rank) const {
    return static_cast<std::int64_t>(rank) + cardsCut < static_cast<std::int64_t>(reasons.size());
  }
};

/// Whether the server that answers is the one that ships with us.
bool isOurServer(const Context& context) {
  if (!context.environment.value("QUILLSTEAD_MCP_BIN")) return true;
  const auto own = OS::canonicalPath(context.places.server);
  return own && own == OS::canonicalPath(hook::MCPBinary::resolve(context.environment));
}

void readTrail(Brought& brought) {
  constexpr std::string_view cut = "trimmed=";
  for (const std::string& field : brought.trial.trail) {
    if (LogLine::isMiss(field)) brought.missed.push_back(field);
    if (!field.starts_with(cut)) continue;
    const std::string_view number = std::string_view(field).substr(cut.size());
    std::from_chars(number.data(), number.data() + number.size(), brought.cardsCut);
  }
}

/// Whether what did not come says that something is broken.
bool isBroken(const std::string& miss) {
  return miss.ends_with(":timeout") || miss.ends_with(":no-envelope") ||
         miss.ends_with(":no-kind") || miss.ends_with(":declined");
}

JSON::Array texts(const std::vector<std::string>& list) {
  JSON::Array array;
  for (const std::string& text : list) array.emplace_back(text);
  return array;
}

std::string json(const Brought& brought) {
  JSON::Array parts;
  for (const Part& part : brought.parts) {
    parts.emplace_back(JSON::objectOf({{"kind", part.kind},
                                       {"bytes", static_cast<std::int64_t>(part.text.size())},
                                       {"text", part.text}}));
  }
  JSON::Array cards;
  for (std::size_t rank = 0; rank < brought.reasons.size(); ++rank) {
    const CardReason& reason = brought.reasons[rank];
    cards.emplace_back(JSON::objectOf({{"rank", static_cast<std::int64_t>(rank + 1)},
                                       {"store", reason.store},
                                       {"file", reason.file},
                                       {"title", reason.title},
                                       {"words", texts(reason.words)},
                                       {"sent", brought.isSent(rank)}}));
  }
  const auto budget = brought.harness.contextBudget();
  return JSON::write(JSON::objectOf({{"harness", brought.harness.name()},
                                     {"cwd", brought.directory},
                                     {"bytes", brought.size()},
                                     {"budget", budget ? JSON::Value(*budget) : JSON::Value()},
                                     {"ms", brought.trial.milliseconds},
                                     {"parts", std::move(parts)},
                                     {"cards_cut", brought.cardsCut},
                                     {"missed", texts(brought.missed)},
                                     {"cards", std::move(cards)},
                                     {"trail", texts(brought.trial.trail)}}),
                     JSON::Slashes::plain) +
         "\n";
}

std::string reasonsText(const Brought& brought, const Console& console) {
  if (brought.reasons.empty()) return {};
  std::string text = console.coloured(Colour::bold, "Why these cards") + "\n";
  for (std::size_t rank = 0; rank < brought.reasons.size(); ++rank) {
    const CardReason& reason = brought.reasons[rank];
    text.append("  ")
        .append(std::to_string(rank + 1))
        .append(". ")
        .append(Wording::harmless(reason.title));
    text.append(" (")
        .append(reason.store)
        .append(": ")
        .append(Wording::harmless(reason.file))
        .append("): ");
    text.append(Wording::harmless(Wording::joined(reason.words, ", ")));
    text.append(brought.isSent(rank) ? "\n" : "; left out, the budget is full\n");
  }
  return text + "\n";
}

std::string text(const Brought& brought, const Console& console) {
  const auto budget = brought.harness.contextBudget();
  std::string text = std::string(brought.harness.name()) + ", in " +
                     Wording::harmless(brought.directory) + ": " +
                     Wording::grouped(brought.size()) + " bytes";
  text += budget ? " of " + Wording::grouped(*budget) : ", which have no limit";
  text += ", in " + std::to_string(brought.trial.milliseconds) + " ms\n\n";
  for (const Part& part : brought.parts) {
    const std::string title = std::string(part.kind) + ", " +
                              Wording::grouped(static_cast<std::int64_t>(part.text.size())) +
                              " bytes";
    text += console.coloured(Colour::bold, title) + "\n" + Wording::harmless(part.text) + "\n\n";
  }
  if (brought.parts.empty()) text += "The agent gets nothing.\n\n";
  text += reasonsText(brought, console);
  if (brought.cardsCut > 0) {
    text += console.coloured(Colour::yellow, "Cut to fit the budget: ") +
            std::to_string(brought.cardsCut) + (brought.cardsCut == 1 ? " card\n" : " cards\n");
  }
  for (const std::string& miss : brought.missed) {
    text += console.coloured(Colour::yellow, "Missing: ") + Wording::harmless(miss) + "\n";
  }
  return text +
         console.coloured(Colour::faint, "Trail: " + Wording::harmless(Wording::joined(
                                                         brought.trial.trail, " "))) +
         "\n";
}

/// Why there is no answer.
std::string flawOf(const HookTrial& trial, const std::string& hook) {
  switch (trial.end.how) {
    case ChildEnd::How::notStarted:
      return hook + ": cannot be started";
    case ChildEnd::How::timedOut:
      return hook + ": did not answer in time";
    case ChildEnd::How::exited:
    case ChildEnd::How::signalled:
    case ChildEnd::How::enough:
      break;
  }
  return hook + ": gave no answer that the harness could read";
}

}  // namespace

int run(const Options& options, const Context& context) {
  const hook::HarnessAdapter* const harness = hook::Harnesses::named(options.harness);
  const std::string wanted = options.directory.empty() ? "." : options.directory;
  const auto directory = OS::canonicalPath(wanted);
  if (!directory) {
    context.console.complain(wanted + ": there is no such directory");
    return EXIT_FAILURE;
  }
  const std::string prompt = Wording::joined(options.prompt, " ");
  Brought brought{
      .harness = *harness,
      .directory = *directory,
      .trial = HookTrial::run(
          *harness, {context.places.hook, "--harness", options.harness},
          HookTrial::payload(prompt, *directory), *directory,
          ChildRun::changed(context.environment, {"QUILLSTEAD_HOOK_LOG", "CURSOR_VERSION"})),
      .parts = {},
      .reasons = {},
      .missed = {}};
  context.console.printError(Wording::harmless(brought.trial.end.error));
  if (!brought.trial.isReadable) {
    context.console.complain(flawOf(brought.trial, context.places.hook));
    return EXIT_FAILURE;
  }
  brought.parts = partsOf(brought.trial.context.value_or(""));
  readTrail(brought);
  if (isOurServer(context)) {
    brought.reasons = CardReasons::find(prompt, *directory, context.environment);
  }
  context.console.print(options.json ? json(brought) : text(brought, context.console));
  const bool isSound = std::none_of(brought.missed.begin(), brought.missed.end(), isBroken);
  return isSound ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace quillstead::cli::Recall
