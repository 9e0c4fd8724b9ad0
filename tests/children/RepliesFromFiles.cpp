// A server whose replies lie ready in the directory QUILLSTEAD_TEST_REPLIES. For a call of the tool
// T it keeps what it was sent in "T.request", prints what is in "T.reply" and, to standard error,
// in "T.error", and ends with the status in "T.status"; each of the three may be missing.
#include "support/JSON/Reader.h"
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace {

using namespace quillstead;

template <typename Stream>
std::string everythingIn(Stream&& stream) {
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string everythingOnStandardInput() { return everythingIn(std::ifstream("/dev/stdin")); }

/// The tool that the second line of the requests calls.
std::string toolIn(const std::string& requests) {
  const std::size_t second = requests.find('\n') + 1;
  const auto call = JSON::read(requests.substr(second));
  const auto parameters = call ? call->object().find("params").object() : std::nullopt;
  const auto name = parameters ? parameters->find("name").string() : std::nullopt;
  return std::string(name.value_or("no-tool"));
}

}  // namespace

int main() {
  const std::string requests = everythingOnStandardInput();
  const std::string tool =
      std::string(std::getenv("QUILLSTEAD_TEST_REPLIES")) + "/" + toolIn(requests);
  std::ofstream(tool + ".request", std::ios::binary) << requests;
  OS::writeAll(STDOUT_FILENO, everythingIn(std::ifstream(tool + ".reply")));
  OS::writeAll(STDERR_FILENO, everythingIn(std::ifstream(tool + ".error")));
  const std::string status = everythingIn(std::ifstream(tool + ".status"));
  return status.empty() ? 0 : std::stoi(status);
}
