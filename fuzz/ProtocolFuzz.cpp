// Any bytes as what a client sends, in pieces of any length: every line gets the answer it wants,
// and that is JSON-RPC. There is no store, and none can be made.
#include "Property.h"
#include "server/Protocol.h"
#include "server/Server.h"

#include <array>

using namespace quillstead;
using namespace quillstead::server;

namespace {

void requireResponse(JSON::View value) {
  const auto response = value.object();
  Fuzz::require(response.has_value(), "a response is an object");
  Fuzz::require(response->find("jsonrpc").string() == "2.0", "a response says its version");
  Fuzz::require(response->find("id").exists(), "a response has an id");
  Fuzz::require(response->find("result").exists() != response->find("error").exists(),
                "a response is a result or an error");
}

void answer(const std::string& line) {
  static constexpr std::array<const char*, 5> entries{
      "HOME=/dev/null/none", "QUILLSTEAD_HOME=/dev/null/none", "XDG_CACHE_HOME=/dev/null/none",
      "PATH=/dev/null", nullptr};
  std::string text;
  const auto collect = [&text](std::string_view part) {
    text += part;
    return true;
  };
  Fuzz::require(Protocol::respond(line, OS::Environment(entries.data()), collect),
                "an answer is handed over to its end");
  if (text.empty()) return;
  Fuzz::require(Fuzz::isUTF8(text) && Fuzz::isOneLine(text), "an answer is one line of UTF-8");
  const auto document = JSON::read(text);
  Fuzz::require(document.has_value(), "an answer is JSON");
  if (const auto batch = document->root().array()) {
    Fuzz::require(!batch->empty(), "an answer says something");
    for (const JSON::View each : *batch) requireResponse(each);
  } else {
    requireResponse(document->root());
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  constexpr std::size_t longestLine = 2'000;
  std::string_view sent = Fuzz::bytes(data, size);
  const std::size_t piece = sent.empty() ? 1 : 1 + static_cast<unsigned char>(sent.front());
  LineBuffer lines(longestLine);
  const auto take = [&](std::optional<LineBuffer::Line> line) {
    if (!line) return false;
    const auto* text = std::get_if<std::string>(&*line);
    if (text == nullptr) return true;
    Fuzz::require(text->size() <= longestLine, "a line that is kept is not too long");
    Fuzz::require(text->find('\n') == std::string::npos, "a line is one line");
    answer(*text);
    return true;
  };
  while (!sent.empty()) {
    lines.add(sent.substr(0, piece));
    sent.remove_prefix(std::min(piece, sent.size()));
    while (take(lines.take())) {
    }
  }
  take(lines.takeRest());
  return 0;
}
