#pragma once

#include <string>
#include <string_view>

/// The blocks in which rules and cards are handed to agents, where they come back to the server.
namespace quillstead::server::OwnBlocks {

/// `text` without every whole block of ours, fences included. A fence that is never closed is left
/// as it is.
std::string removed(std::string_view text);

}  // namespace quillstead::server::OwnBlocks
