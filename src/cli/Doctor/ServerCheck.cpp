#include "cli/Doctor/ServerCheck.h"

#include "cli/ChildRun.h"
#include "cli/Wording.h"
#include "hook/MCP/MCPBinary.h"
#include "support/JSON/Reader.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace quillstead::cli::ServerCheck {

namespace {

constexpr std::string_view requests =
    R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2024-11-05","capabilities":{},"clientInfo":{"name":"quillstead-doctor","version":"1"}}}
{"jsonrpc":"2.0","method":"notifications/initialized"}
{"jsonrpc":"2.0","id":2,"method":"tools/list"}
{"jsonrpc":"2.0","id":3,"method":"tools/call","params":{"name":"rules_get","arguments":{}}}
)";
constexpr int handshake = 1;
constexpr int toolList = 2;
constexpr int rules = 3;

/// The lines that the server wrote.
class Answers {
 public:
  explicit Answers(std::string_view output) {
    while (!output.empty()) {
      const std::string_view line = output.substr(0, output.find('\n'));
      output.remove_prefix(std::min(output.size(), line.size() + 1));
      if (auto document = JSON::read(line)) documents_.push_back(std::move(*document));
    }
  }

  /// The result of the request with that id; empty when there is none.
  [[nodiscard]] JSON::ObjectView result(int id) const {
    for (const JSON::Document& document : documents_) {
      const auto number = document.object().find("id").number();
      if (number && number->integer() == id) {
        return document.object().find("result").object().value_or(JSON::ObjectView());
      }
    }
    return {};
  }

  /// True when all requests were answered.
  [[nodiscard]] bool areComplete() const {
    return !result(handshake).empty() && !result(toolList).empty() && !result(rules).empty();
  }

 private:
  std::vector<JSON::Document> documents_;
};

bool offers(JSON::ObjectView list, std::string_view tool) {
  const JSON::ArrayView tools = list.find("tools").elements();
  return std::any_of(tools.begin(), tools.end(), [tool](JSON::View each) {
    return each.object().value_or(JSON::ObjectView()).find("name").string() == tool;
  });
}

std::string firstLine(std::string_view text) {
  constexpr std::size_t longest = 60;  // bytes
  const std::string_view trimmed = Text::trimmed(text);
  return Wording::plain(trimmed.substr(0, std::min(trimmed.find('\n'), longest)));
}

/// Only our own server must have our version.
void findOtherVersion(const Answers& answers, Findings& findings) {
  const auto server = answers.result(handshake).find("serverInfo").object();
  if (!server || server->find("name").string() != "quillstead-mcp") return;
  const std::string version(server->find("version").string().value_or(""));
  if (version == QUILLSTEAD_VERSION) return;
  findings.warn("is of version " + Wording::plain(version) + ", and this is " QUILLSTEAD_VERSION,
                "install quillstead, quillstead-hook and quillstead-mcp together");
}

void findFlaws(const ChildEnd& end, Findings& findings, const std::string& fix) {
  const std::string took = std::to_string(end.took.count()) + " ms";
  const Answers answers(end.output);
  if (end.how == ChildEnd::How::notStarted) {
    findings.fail(std::string("cannot be started (") + std::strerror(end.status) + ")", fix);
  } else if (end.how == ChildEnd::How::timedOut && !answers.areComplete()) {
    findings.fail("hangs: no answer within " + took, fix);
  } else if (end.how == ChildEnd::How::timedOut) {
    findings.warn("answers, but does not end when its input does", fix);
  } else if (!end.isSuccess()) {
    const std::string said = firstLine(end.error);
    findings.fail("ends with " +
                      std::string(end.how == ChildEnd::How::exited ? "status " : "signal ") +
                      std::to_string(end.status) + (said.empty() ? "" : ", saying: " + said),
                  fix);
  } else if (answers.result(handshake).empty()) {
    const std::string said = firstLine(end.output);
    findings.fail(said.empty() ? "says nothing" : "answers with something other than MCP: " + said,
                  fix);
  } else if (answers.result(rules).find("isError").boolean().value_or(false)) {
    findings.fail("cannot tell the rules", fix);
  } else {
    for (const char* const tool : {"rules_get", "memory_get_relevant"}) {
      if (!offers(answers.result(toolList), tool)) {
        findings.fail(std::string("has no tool ") + tool, fix);
      }
    }
    if (answers.result(rules).empty()) findings.fail("does not answer rules_get", fix);
    findOtherVersion(answers, findings);
  }
}

}  // namespace

Check run(const Context& context, std::chrono::milliseconds limit) {
  const std::string server = hook::MCPBinary::resolve(context.environment);
  const bool isChosen = context.environment.value("QUILLSTEAD_MCP_BIN").has_value();
  const std::string path = isChosen ? server : context.places.server;
  const ChildEnd end = ChildRun::run({.command = {path},
                                      .environment = ChildRun::changed(context.environment, {}),
                                      .directory = {},
                                      .input = std::string(requests),
                                      .limit = limit});
  Findings findings;
  findFlaws(end, findings,
            isChosen ? "correct QUILLSTEAD_MCP_BIN, or unset it"
                     : "put quillstead-mcp back beside quillstead, or install both again");
  Check check =
      findings.check("server.start", "starts, shakes hands, lists its tools and answers in " +
                                         std::to_string(end.took.count()) + " ms");
  check.summary = path + ": " + check.summary;
  return check;
}

}  // namespace quillstead::cli::ServerCheck
