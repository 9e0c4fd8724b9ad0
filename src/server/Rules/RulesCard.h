#pragma once

#include "server/Index/Index.h"
#include "server/Rules/RulesBlock.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The rules, fitted into the room that a harness gives them.
namespace quillstead::server::RulesCard {

/// Bytes; absent is no limit.
struct Ceilings {
  std::optional<std::size_t> block;  ///< of all of the block
  std::optional<std::size_t> head;   ///< of the block as it would be without its index
};

/// How much of the rules a card contains.
enum class Kind {
  whole,
  cut,      ///< rules were left out at the end, and a line says so
  pointer,  ///< no rule fits; it only says how to get them
  nothing,  ///< not even that fits
};

struct Card {
  Kind kind;
  RulesBlock block;  ///< within the ceilings, whatever they are
};

/// If only the head has a ceiling, the whole block stays within it if rules and index fit. `note`
/// is the last paragraph of the head. It is left out only when it is empty or does not fit by
/// itself.
Card made(std::string_view rules, const Titles& titles, const Ceilings& ceilings,
          std::string_view note = {});

/// "whole", "cut", "pointer" or "nothing".
std::string_view nameOf(Kind kind);

}  // namespace quillstead::server::RulesCard
