#pragma once

#include <string_view>

/// What the hook and a memory server agree on, besides MCP itself: the names that both write and
/// read. docs/server-protocol.md tells what they mean.
namespace quillstead::contract {

/// The server's tools. The hook calls the first two; agents call all of them.
namespace Tool {
inline constexpr std::string_view rulesGet = "rules_get";
inline constexpr std::string_view memoryGetRelevant = "memory_get_relevant";
inline constexpr std::string_view memoryAdd = "memory_add";
inline constexpr std::string_view grab = "grab";
}  // namespace Tool

/// What a call may say about who calls, and how much room there is.
namespace Argument {
inline constexpr std::string_view prompt = "prompt";
inline constexpr std::string_view cwd = "cwd";
inline constexpr std::string_view sessionID = "session_id";
inline constexpr std::string_view transcriptPath = "transcript_path";
inline constexpr std::string_view card = "card";                          ///< true: rules as a card
inline constexpr std::string_view cardCeiling = "card_ceiling";           ///< bytes of the block
inline constexpr std::string_view cardHeadCeiling = "card_head_ceiling";  ///< without its index
inline constexpr std::string_view session = "_quillstead_session";        ///< stamped by the hook
inline constexpr std::string_view subagent = "_quillstead_subagent";      ///< stamped by the hook
}  // namespace Argument

/// Keys of the result's "_meta".
namespace Meta {
inline constexpr std::string_view replyKind = "quillstead/replyKind";
inline constexpr std::string_view rulesLane = "quillstead/rulesLane";
inline constexpr std::string_view card = "quillstead/card";
inline constexpr std::string_view indexSpan = "quillstead/indexSpan";
inline constexpr std::string_view cardCount = "quillstead/cardCount";
inline constexpr std::string_view cardSpans = "quillstead/cardSpans";
inline constexpr std::string_view shortcut = "quillstead/shortcut";
inline constexpr std::string_view shortcutMiss = "quillstead/shortcutMiss";
inline constexpr std::string_view now = "quillstead/now";
inline constexpr std::string_view store = "quillstead/store";  ///< of a card added or read
inline constexpr std::string_view file = "quillstead/file";    ///< of a card added or read
}  // namespace Meta

/// Values of `Meta::replyKind`. The hook knows the first three.
namespace ReplyKind {
inline constexpr std::string_view empty = "empty";
inline constexpr std::string_view rules = "rules";
inline constexpr std::string_view cards = "cards";
inline constexpr std::string_view card = "card";    ///< one whole card
inline constexpr std::string_view added = "added";  ///< a card was written
}  // namespace ReplyKind

/// The value of `Meta::rulesLane` when the rules come as a card.
inline constexpr std::string_view asCard = "card";

/// The value of `Meta::card` when it tells only where the rules are.
inline constexpr std::string_view pointer = "pointer";

/// What stands around rules, with the index of titles as their last lines.
namespace RulesFence {
inline constexpr std::string_view opening = "<user-rules>\n";
inline constexpr std::string_view closing = "\n</user-rules>";
}  // namespace RulesFence

/// What stands around cards. `gap` comes before each of them; a header may stand first.
namespace MemoryFence {
inline constexpr std::string_view opening = "<quillstead-memory>\n";
inline constexpr std::string_view closing = "\n</quillstead-memory>";
inline constexpr std::string_view gap = "\n\n";
}  // namespace MemoryFence

/// How the texts begin that come beside the cards.
inline constexpr std::string_view shortcutTag = "<quillstead-shortcut>";
inline constexpr std::string_view nowTag = "<quillstead-now>";

}  // namespace quillstead::contract
