#pragma once

#include "server/Index/PhraseReader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// How well cards match a prompt: BM25, with more points for words that follow each other as in the
/// prompt, and for cards that cover much of the prompt.
namespace quillstead::server::CardScores {

struct Scored {
  std::int64_t id;
  double score;  ///< above 0; higher is better
};

/// The cards worth showing, in no order: the `limit` best, and those with the same score as the
/// last of them. Cards that score far below the best are left out, and so are cards that share too
/// little with the prompt. `unknown`: how many words of the prompt are in no card. Absent when the
/// database failed.
std::optional<std::vector<Scored>> of(const std::vector<Phrase>& phrases, std::size_t unknown,
                                      PhraseReader& reader, std::size_t limit);

}  // namespace quillstead::server::CardScores
