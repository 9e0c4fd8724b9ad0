#pragma once

#include "support/OS/Environment.h"

#include <string>
#include <string_view>

/// The user's own directories, from the environment. A variable that is empty or not an absolute
/// path is ignored, because its meaning would depend on the current directory.
namespace quillstead::server::UserPlaces {

/// HOME, else the system's answer, without a slash at its end; empty when both are missing.
std::string home(const OS::Environment& environment);

/// The directory of personal memory: QUILLSTEAD_HOME, or ~/.quillstead. Links are followed if it
/// exists. Empty when no place for it is known.
std::string personalStore(const OS::Environment& environment);

/// The same, but always ~/.quillstead, even if QUILLSTEAD_HOME names another directory.
std::string defaultPersonalStore(const OS::Environment& environment);

/// The directory for what the server can make again, without links: it is there afterwards, belongs
/// to the user and is closed to all others, whoever made it. Empty when there is no such place.
std::string makeCacheDirectory(const OS::Environment& environment);

/// Makes sure that `path`, in that directory, is the user's own file that nobody else may read. A
/// missing file is created empty. Anything else there (a link, a pipe, another user's file) is
/// removed. False on failure.
bool makeCacheFile(const std::string& path);

/// The name of a store's directory, in a project and in the home directory.
inline constexpr std::string_view storeName = ".quillstead";

/// A path without slashes at its end; the root stays.
std::string withoutLastSlashes(std::string_view path);

/// `directory` and `name` as one path.
std::string joined(std::string_view directory, std::string_view name);

}  // namespace quillstead::server::UserPlaces
