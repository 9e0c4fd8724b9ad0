#pragma once

#include "support/OS/Environment.h"

#include <string>
#include <string_view>

/// Where the user's own things are, as the environment says. A variable that is not set, empty or
/// no absolute path says nothing: what it names would depend on the directory one stands in.
namespace quillstead::server::UserPlaces {

/// HOME, or what the system says; empty when nobody knows.
std::string home(const OS::Environment& environment);

/// The directory of personal memory: QUILLSTEAD_HOME, or ~/.quillstead. Links are followed when it
/// exists; empty when there is no place for it.
std::string personalStore(const OS::Environment& environment);

/// ~/.quillstead, also when QUILLSTEAD_HOME names another directory; likewise.
std::string defaultPersonalStore(const OS::Environment& environment);

/// The directory for what the server can make again, without links: it is there afterwards, belongs
/// to the user and is closed to all others, whoever made it. Empty when there is no such place.
std::string makeCacheDirectory(const OS::Environment& environment);

/// Makes sure that `path`, in that directory, is a file of the user's own that nobody else may
/// read, made empty where it is missing. What else stands there (a link, a pipe, another's file) is
/// removed. False when that did not succeed.
bool makeCacheFile(const std::string& path);

/// What a store's directory is called in a project and in the home directory.
inline constexpr std::string_view storeName = ".quillstead";

/// `directory` and `name` as one path.
std::string joined(std::string_view directory, std::string_view name);

}  // namespace quillstead::server::UserPlaces
