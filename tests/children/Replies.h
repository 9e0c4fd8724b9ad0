#pragma once

#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <array>
#include <string>
#include <string_view>

/// What the servers that misbehave in one way do right in every other.
namespace quillstead::Replies {

inline constexpr std::string_view handshake = R"({"jsonrpc":"2.0","id":1,"result":{}})"
                                              "\n";

inline constexpr std::string_view rules =
    R"({"jsonrpc":"2.0","id":2,"result":{"content":[{"type":"text",)"
    R"("text":"<user-rules>\nAlways test.\nIndex: a/b\n</user-rules>"}],)"
    R"("_meta":{"quillstead/replyKind":"rules","quillstead/rulesLane":"card",)"
    R"("quillstead/indexSpan":10}}})"
    "\n";

inline constexpr std::string_view memory =
    R"({"jsonrpc":"2.0","id":2,"result":{"content":[{"type":"text",)"
    R"("text":"<quillstead-memory>\nheader\n\ncard one\n\ncard two\n</quillstead-memory>"}],)"
    R"("_meta":{"quillstead/replyKind":"cards","quillstead/cardCount":2,)"
    R"("quillstead/cardSpans":[8,8],"quillstead/shortcut":"<quillstead-shortcut>s",)"
    R"("quillstead/now":"<quillstead-now>n"}}})"
    "\n";

inline std::string everythingOnStandardInput() {
  std::string all;
  std::array<char, 65'536> buffer;
  for (;;) {
    const OS::Transfer part = OS::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (part.result != OS::Transfer::Result::moved) return all;
    all.append(buffer.data(), part.count);
  }
}

/// The whole answer to what was asked on standard input.
inline std::string answer() {
  const bool asksForRules = everythingOnStandardInput().find(R"("rules_get")") != std::string::npos;
  std::string text(handshake);
  text += asksForRules ? rules : memory;
  return text;
}

}  // namespace quillstead::Replies
