#pragma once

#include "cli/Context.h"
#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/Harnesses.h"
#include "support/OS/Descriptor.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

enum class Direction { install, uninstall };

/// Changes the files of one run of install or uninstall, and tells what became of each.
class FileChanges {
 public:
  /// A dry run prints what would change and writes nothing.
  FileChanges(Direction direction, bool isDryRun, const Context& context)
      : direction_(direction), isDryRun_(isDryRun), context_(context) {}

  /// Changes the file and prints a line on it; complains when it is left alone. True when it was
  /// changed.
  bool change(const Harnesses::Target& target);

  [[nodiscard]] bool wasAnyLeftAlone() const { return wasAnyLeftAlone_; }

  /// Prints where the copies are that were made of files as they were before.
  void tellCopies() const;

 private:
  enum class Attempt { changed, notChanged, again };

  Attempt attempt(const Harnesses::Target& target);
  Attempt write(const Harnesses::Target& target, const ConfigFile::Content& before,
                const Edited& edit, std::string_view word);
  Attempt leaveAlone(const Harnesses::Target& target, const std::string& place,
                     const std::string& what);
  void tell(const Harnesses::Target& target, std::string_view outcome);

  /// Keeps other runs out until this one ends. False when that cannot be.
  bool lock();

  Direction direction_;
  bool isDryRun_;
  const Context& context_;
  OS::Descriptor lock_;
  bool wasAnyLeftAlone_ = false;
  std::vector<std::string> copies_;
};

}  // namespace quillstead::cli
