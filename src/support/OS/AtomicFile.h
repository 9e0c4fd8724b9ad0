#pragma once

#include "support/OS/Descriptor.h"

#include <string>
#include <string_view>

/// Files that come into being whole.
namespace quillstead::OS::AtomicFile {

enum class Outcome {
  created,
  exists,  ///< the name was taken; nothing was changed
  failed,  ///< nothing under the name; `errno` tells why
};

/// Creates the file `name` in `directory` with these bytes and mode 0644 less the process's mask.
/// Whoever looks sees either no such file or all of it, also when the process is killed on the way
/// and when others create the same name at once: exactly one of them gets it. The bytes are
/// handed to the disk before the name is there, so that a crash of the system leaves no torn file;
/// what a loss of power leaves is up to the disk, which on macOS may still hold them in its cache.
Outcome create(const Descriptor& directory, const std::string& name, std::string_view bytes);

/// Removes what killed processes left half written in `directory`, when it is an hour old.
void removeLeftovers(const Descriptor& directory);

}  // namespace quillstead::OS::AtomicFile
