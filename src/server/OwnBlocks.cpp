#include "server/OwnBlocks.h"

#include <array>
#include <cstddef>

namespace quillstead::server::OwnBlocks {

namespace {

struct Fence {
  std::string_view opening;
  std::string_view closing;
};

constexpr std::array<Fence, 4> fences{{
    {"<user-rules>", "</user-rules>"},
    {"<quillstead-memory>", "</quillstead-memory>"},
    {"<quillstead-shortcut>", "</quillstead-shortcut>"},
    {"<quillstead-now>", "</quillstead-now>"},
}};

/// The length of the block that begins `text`; 0 when none does.
std::size_t lengthOfBlock(std::string_view text) {
  for (const Fence& fence : fences) {
    if (!text.starts_with(fence.opening)) continue;
    const std::size_t end = text.find(fence.closing, fence.opening.size());
    return end == std::string_view::npos ? 0 : end + fence.closing.size();
  }
  return 0;
}

}  // namespace

std::string removed(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t at = text.find('<');
    result += text.substr(0, at);
    if (at == std::string_view::npos) break;
    text.remove_prefix(at);
    const std::size_t length = lengthOfBlock(text);
    if (length == 0) result += '<';
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return result;
}

}  // namespace quillstead::server::OwnBlocks
