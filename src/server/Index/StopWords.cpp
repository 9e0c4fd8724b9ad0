#include "server/Index/StopWords.h"

#include <algorithm>
#include <array>

namespace quillstead::StopWords {

namespace {

/// In the order of their bytes, for the search. What is left of "don't" and "we'll" is among them.
constexpr auto words = std::to_array<std::string_view>({
    "a",        "able",       "about",      "above",   "after",    "again",      "against",
    "ain",      "all",        "almost",     "also",    "although", "always",     "am",
    "an",       "and",        "another",    "any",     "anybody",  "anyone",     "anything",
    "are",      "aren",       "around",     "as",      "ask",      "at",         "away",
    "back",     "be",         "became",     "because", "been",     "before",     "behind",
    "being",    "below",      "between",    "both",    "but",      "by",         "came",
    "can",      "cannot",     "could",      "couldn",  "did",      "didn",       "do",
    "does",     "doesn",      "doing",      "don",     "done",     "down",       "during",
    "each",     "either",     "else",       "enough",  "even",     "ever",       "every",
    "everyone", "everything", "few",        "for",     "from",     "further",    "gave",
    "get",      "gets",       "getting",    "give",    "given",    "go",         "goes",
    "going",    "gone",       "got",        "had",     "hadn",     "has",        "hasn",
    "have",     "haven",      "having",     "he",      "hello",    "help",       "her",
    "here",     "hers",       "herself",    "hey",     "hi",       "him",        "himself",
    "his",      "how",        "however",    "i",       "if",       "in",         "instead",
    "into",     "is",         "isn",        "it",      "its",      "itself",     "just",
    "know",     "later",      "least",      "let",     "lets",     "like",       "ll",
    "look",     "made",       "make",       "makes",   "making",   "many",       "may",
    "maybe",    "me",         "might",      "mine",    "more",     "most",       "much",
    "must",     "mustn",      "my",         "myself",  "need",     "needs",      "neither",
    "never",    "no",         "nobody",     "none",    "nor",      "not",        "nothing",
    "now",      "of",         "off",        "ok",      "okay",     "on",         "once",
    "one",      "only",       "onto",       "or",      "other",    "others",     "our",
    "ours",     "ourselves",  "out",        "over",    "own",      "perhaps",    "please",
    "quite",    "rather",     "re",         "really",  "right",    "said",       "same",
    "say",      "says",       "see",        "seem",    "seems",    "several",    "shall",
    "shan",     "she",        "should",     "shouldn", "since",    "so",         "some",
    "somebody", "someone",    "something",  "still",   "such",     "sure",       "take",
    "tell",     "than",       "thank",      "thanks",  "that",     "the",        "their",
    "theirs",   "them",       "themselves", "then",    "there",    "these",      "they",
    "thing",    "things",     "think",      "this",    "those",    "though",     "through",
    "thus",     "to",         "together",   "too",     "toward",   "towards",    "try",
    "under",    "unless",     "until",      "up",      "upon",     "us",         "use",
    "used",     "using",      "ve",         "very",    "want",     "wants",      "was",
    "wasn",     "way",        "we",         "well",    "went",     "were",       "weren",
    "what",     "whatever",   "when",       "where",   "whether",  "which",      "while",
    "who",      "whoever",    "whole",      "whom",    "whose",    "why",        "will",
    "with",     "within",     "without",    "won",     "would",    "wouldn",     "yes",
    "yet",      "you",        "your",       "yours",   "yourself", "yourselves",
});

static_assert(std::is_sorted(words.begin(), words.end()));

}  // namespace

bool contains(std::string_view word) {
  return std::binary_search(words.begin(), words.end(), word);
}

}  // namespace quillstead::StopWords
