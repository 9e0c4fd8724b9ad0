#pragma once

#include "support/OS/Descriptor.h"
#include "support/OS/FileStamp.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::OS {

/// Whether a symbolic link in the last place of a path is followed or refused.
enum class Links { followed, refused };

/// Opens a directory for looking into it; not open when there is none or it may not be read.
Descriptor openDirectory(const std::string& path, Links links);

/// Calls `visit` with the name and the stamp of each regular file in the directory whose name ends
/// in `suffix`; symbolic links and everything else are passed over. The order is the file system's.
/// False when the directory could not be read to its end.
bool forEachFile(const Descriptor& directory, std::string_view suffix,
                 const std::function<void(std::string_view name, FileStamp stamp)>& visit);

/// Makes the directory and those above it that are missing, each with `mode` less the process's
/// mask. True when the directory is there afterwards.
bool makeDirectories(const std::string& path, mode_t mode);

}  // namespace quillstead::OS
