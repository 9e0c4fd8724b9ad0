#pragma once

#include "support/OS/Environment.h"

#include <string>

/// The directory for what the server can make again.
namespace quillstead::server::CacheDirectory {

/// Its path without links, for a directory that is there afterwards, belongs to the user and is
/// closed to all others, whoever made it. Empty when there is no such place.
std::string make(const OS::Environment& environment);

/// Makes sure that `path`, in that directory, is a file of the user's own that nobody else may
/// read, made empty where it is missing. What else stands there (a link, a pipe, another's file) is
/// removed. False when that did not succeed.
bool makeFile(const std::string& path);

}  // namespace quillstead::server::CacheDirectory
