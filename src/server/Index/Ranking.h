#pragma once

#include <cstddef>
#include <cstdint>

/// The constants for finding, ranking and leaving out cards. docs/recall.md explains them and
/// measures the results.
namespace quillstead::server::Ranking {

// Search terms.
inline constexpr std::size_t mostWords = 64;  ///< of a prompt, which may carry a whole log
inline constexpr std::size_t mostPromptBytes = 32'768;

// The weights of words. A card is shown when the weights of its words from the prompt add up to 1.
inline constexpr double ordinaryWord = 1;
inline constexpr double commonWord = 0.5;
inline constexpr double partOfName = 0.5;
inline constexpr double guessedWord = 0.5;  ///< found by its beginning only
inline constexpr double pairOfHan = 1;
inline constexpr double pairOfHangul = 1;
inline constexpr double pairOfHiragana = 0.25;
inline constexpr double pairOfAlphabet = 0.25;  ///< Thai, Lao, Khmer, Burmese
inline constexpr double otherPair = 0.5;
inline constexpr double enough = 1;

// Long prompts share some pairs with any card. So pairs count only if the card has at least this
// share of the weight of all the prompt's pairs that any card has.
inline constexpr double leastPairsOfHangul = 0.18;
inline constexpr double leastRunsOfAlphabet = 0.35;  ///< of pairs beside each other in both

inline constexpr std::size_t shortestGuess = 4;  ///< bytes of a word's beginning
inline constexpr std::size_t certainBeginning =
    8;                                          ///< bytes of a word that says all as a beginning
inline constexpr std::size_t mostGuesses = 40;  ///< at all the words of a prompt that no card has
inline constexpr std::size_t largeStore = 1'000;

// The rank function, BM25 with additions.
inline constexpr double saturation = 1.2;      ///< BM25's k1
inline constexpr double lengthPenalty = 0.75;  ///< BM25's b
inline constexpr double titleWeight = 8;
inline constexpr double tagWeight = 4;
inline constexpr double bodyWeight = 1;
inline constexpr double phraseWeight = 0.5;   ///< of the rarer of two words that follow each other
inline constexpr double coverageShare = 0.5;  ///< of a score that depends on how much of the prompt
                                              ///< is in the card

/// A card whose score is below this fraction of the best is left out.
inline constexpr double leastPartOfBest = 0.3;
/// The same for prompts that are mostly pairs of Hangul, and of Thai, Lao, Khmer or Burmese.
inline constexpr double leastPartOfBestHangul = 0.4;
inline constexpr double leastPartOfBestAlphabet = 0.5;

}  // namespace quillstead::server::Ranking
