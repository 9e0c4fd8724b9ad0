#include "server/Complaint.h"

#include "support/OS/Descriptor.h"
#include "support/Text/Text.h"

#include <unistd.h>

#include <set>
#include <string>

namespace quillstead::server {

void complain(std::string_view line) {
  constexpr std::size_t mostRemembered = 1'000;  // in a server that stays for weeks
  static std::set<std::string> written;
  if (written.size() >= mostRemembered) written.clear();
  const auto [place, isNew] = written.insert("quillstead-mcp: " + Text::onOneLine(line));
  if (isNew) OS::writeLine(STDERR_FILENO, *place);
}

}  // namespace quillstead::server
