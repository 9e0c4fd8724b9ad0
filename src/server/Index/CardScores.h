#pragma once

#include "server/Index/CardWalk.h"
#include "server/Index/PhraseReader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// How well cards match a prompt: BM25, more when words that follow each other in the prompt do so
/// in the card, and when much of the prompt is in it.
namespace quillstead::server::CardScores {

struct Scored {
  std::int64_t id;
  double score;  ///< above 0; higher is better
};

/// The cards worth showing, in no order: the `limit` best and those that are as good as the last of
/// them, without those far behind the best, or whose words say too little. `unknown`: how many
/// words of the prompt no card has. Absent when the database failed.
std::optional<std::vector<Scored>> of(const std::vector<Phrase>& phrases, std::size_t unknown,
                                      PhraseReader& reader, std::size_t limit);

}  // namespace quillstead::server::CardScores
