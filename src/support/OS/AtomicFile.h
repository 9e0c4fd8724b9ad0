#pragma once

#include "support/OS/Descriptor.h"

#include <sys/types.h>

#include <string>
#include <string_view>

/// Files that come into being whole.
namespace quillstead::OS::AtomicFile {

enum class Outcome {
  created,
  exists,  ///< the name was taken; nothing was changed
  failed,  ///< nothing under the name; `errno` tells why
};

inline constexpr mode_t onlyForTheUser = 0600;
inline constexpr mode_t forAll = 0644;
inline constexpr mode_t asTheMaskSays = 0666;

/// Creates the file `name` in `directory` with these bytes and this mode less the process's mask.
/// Whoever looks sees either no such file or all of it, also when the process is killed on the way
/// and when others create the same name at once: exactly one of them gets it. The bytes are
/// handed to the disk before the name is there, so that a crash of the system leaves no torn file;
/// what a loss of power leaves is up to the disk, which on macOS may still hold them in its cache.
Outcome create(const Descriptor& directory, const std::string& name, std::string_view bytes,
               mode_t mode = forAll);

/// The same, but a file of that name is replaced. False when it is not; `errno` tells why.
bool replace(const Descriptor& directory, const std::string& name, std::string_view bytes,
             mode_t mode);

/// Removes what killed processes left half written in `directory`, when it is an hour old.
void removeLeftovers(const Descriptor& directory);

}  // namespace quillstead::OS::AtomicFile
