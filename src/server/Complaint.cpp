#include "server/Complaint.h"

#include "support/OS/Descriptor.h"
#include "support/Text/Text.h"

#include <unistd.h>

#include <set>
#include <string>

namespace quillstead::server {

namespace {

/// A line of at most this many bytes, line end included, is written to a pipe in one piece.
constexpr std::size_t longestComplaint = 4'096;

/// `line`, which is UTF-8, cut between characters.
std::string cut(std::string line) {
  constexpr std::string_view ellipsis = "…";
  if (line.size() < longestComplaint) return line;
  std::size_t end = longestComplaint - 1 - ellipsis.size();
  while (Text::isContinuation(line[end])) --end;
  line.resize(end);
  return line.append(ellipsis);
}

}  // namespace

void complain(std::string_view line) {
  constexpr std::size_t mostRemembered = 1'000;  // in a server that stays for weeks
  static std::set<std::string> written;
  if (written.size() >= mostRemembered) written.clear();
  const auto [place, isNew] = written.insert(cut("quillstead-mcp: " + Text::onOneLine(line)));
  if (isNew) OS::writeIfRoom(STDERR_FILENO, *place + '\n');
}

}  // namespace quillstead::server
