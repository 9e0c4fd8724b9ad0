// Any texts, spans and limit: what is fitted never exceeds the limit, and every answer made of it
// is one.
#include "Property.h"
#include "hook/ContextBudget.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

using namespace quillstead;
using namespace quillstead::hook;
using ContextBudget::Envelope;

namespace {

/// Lanes hand on nothing but UTF-8.
std::string text(FuzzedDataProvider& source) {
  constexpr std::size_t longest = 200;
  return Text::repaired(source.ConsumeRandomLengthString(longest));
}

std::optional<std::string> maybeText(FuzzedDataProvider& source) {
  return source.ConsumeBool() ? std::optional(text(source)) : std::nullopt;
}

/// Memory with the spans that belong to it, or nearly.
void addMemory(FuzzedDataProvider& source, ContextBudget::Texts& texts) {
  std::string memory(Envelope::opening);
  memory += text(source);
  std::vector<std::int64_t> spans;
  const auto cards = source.ConsumeIntegralInRange<std::int64_t>(0, 6);
  for (std::int64_t card = 0; card < cards; ++card) {
    const std::string content = text(source);
    memory.append(Envelope::gap).append(content);
    const auto length = static_cast<std::int64_t>(content.size());
    spans.push_back(source.ConsumeBool() ? length : source.ConsumeIntegral<std::int64_t>());
  }
  texts.memory = memory.append(Envelope::closing);
  if (source.ConsumeBool()) texts.memory = text(source);
  if (source.ConsumeBool()) texts.cardCount = source.ConsumeBool() ? cards : 3;
  if (source.ConsumeBool()) texts.cardSpans = spans;
}

std::size_t joinedSize(const std::vector<std::string>& texts) {
  std::size_t size = texts.empty() ? 0 : 2 * (texts.size() - 1);
  for (const std::string& each : texts) size += each.size();
  return size;
}

bool has(const std::vector<std::string>& texts, const std::optional<std::string>& wanted) {
  return wanted && std::find(texts.begin(), texts.end(), *wanted) != texts.end();
}

void requireSoundMemory(const std::string& kept, const std::string& whole) {
  if (kept == whole) return;
  Fuzz::require(kept.starts_with(Envelope::opening) && kept.ends_with(Envelope::closing),
                "trimmed memory is fenced");
  const std::size_t length = kept.size() - Envelope::closing.size();
  Fuzz::require(whole.starts_with(kept.substr(0, length)), "trimmed memory lost only its end");
  Fuzz::require(whole.substr(length).starts_with(Envelope::gap), "trimmed memory ends with a card");
}

void requireFit(const ContextBudget::Texts& given, const ContextBudget::Fitted& fitted) {
  const auto fits = [&](const std::optional<std::string>& wanted) {
    return has(fitted.texts, wanted);
  };
  Fuzz::require(
      !given.limit || joinedSize(fitted.texts) <=
                          static_cast<std::size_t>(std::max<std::int64_t>(0, *given.limit)),
      "what is fitted is within the limit");
  Fuzz::require(!given.rules || fits(given.rules) || fitted.rulesOverBudget,
                "rules are kept or told of");
  Fuzz::require(!given.shortcut || fits(given.shortcut) || fitted.shortcutOverBudget,
                "a shortcut is kept or told of");
  Fuzz::require(!fitted.justEndedKept || fits(given.justEnded), "a note told of is kept");
  const std::int64_t most = std::max<std::int64_t>(0, given.cardCount.value_or(0));
  Fuzz::require(fitted.cardsDropped >= 0 && fitted.cardsDropped <= most,
                "no more cards are dropped than there are");
  if (given.limit) return;
  const std::size_t all = static_cast<std::size_t>(given.rules.has_value()) +
                          static_cast<std::size_t>(given.shortcut.has_value()) +
                          static_cast<std::size_t>(given.justEnded.has_value()) +
                          static_cast<std::size_t>(given.memory.has_value());
  Fuzz::require(fitted.texts.size() == all, "without a limit all goes out");
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  FuzzedDataProvider source(data, size);
  ContextBudget::Texts texts;
  if (source.ConsumeBool()) texts.limit = source.ConsumeIntegralInRange<std::int64_t>(0, 1'000);
  texts.rules = maybeText(source);
  texts.shortcut = maybeText(source);
  texts.justEnded = maybeText(source);
  if (source.ConsumeBool()) addMemory(source, texts);

  const ContextBudget::Fitted fitted = ContextBudget::fit(texts);
  requireFit(texts, fitted);
  const std::size_t others = static_cast<std::size_t>(has(fitted.texts, texts.rules)) +
                             static_cast<std::size_t>(has(fitted.texts, texts.shortcut)) +
                             static_cast<std::size_t>(fitted.justEndedKept);
  if (texts.memory && fitted.texts.size() > others) {
    requireSoundMemory(fitted.texts.back(), *texts.memory);
  }
  std::string context;
  for (const std::string& each : fitted.texts)
    context.append(context.empty() ? "" : "\n\n").append(each);
  Fuzz::requireEnvelopesOf(context);
  return 0;
}
