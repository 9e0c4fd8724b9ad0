#pragma once

#include <string_view>

namespace quillstead::server {

/// Reports a problem with the user's files as one line on standard error. Each line is written only
/// once per process, so that a long-running server does not repeat it with every call. It is cut at
/// 4,096 bytes. This never waits: what nobody reads is lost.
void complain(std::string_view line);

}  // namespace quillstead::server
