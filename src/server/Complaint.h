#pragma once

#include <string_view>

namespace quillstead::server {

/// Tells whoever runs the server what is wrong with their files: one line on standard error, which
/// is no answer. The same line is written once in a process, so that a server that stays does not
/// repeat itself at every call. Cut at 4,096 bytes, and never waited for: what nobody reads is
/// lost.
void complain(std::string_view line);

}  // namespace quillstead::server
