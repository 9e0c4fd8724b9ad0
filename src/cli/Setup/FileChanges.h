#pragma once

#include "cli/Context.h"
#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/Harnesses.h"
#include "support/OS/Descriptor.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

enum class Direction { install, uninstall };

/// What `quillstead install` and `quillstead uninstall` are told.
struct SetupOptions {
  Direction direction = Direction::install;
  std::vector<std::string> harnesses;  ///< empty: all that the user has
  bool isDryRun = false;

  /// The harnesses that are meant. Complains when there is none.
  [[nodiscard]] std::vector<std::string> chosen(const Context& context) const;
};

/// Changes the files in one run of install or uninstall, and reports each.
class FileChanges {
 public:
  /// A dry run prints the changes and writes nothing.
  FileChanges(const SetupOptions& options, const Context& context)
      : direction_(options.direction), isDryRun_(options.isDryRun), context_(context) {}

  /// Changes the files of a harness and prints a line on each; complains of those that are left
  /// alone. True when any was changed.
  bool changeAll(const std::string& harness, const Programs& programs);

  [[nodiscard]] bool wasAnyLeftAlone() const { return wasAnyLeftAlone_; }

  /// Prints the paths of the copies of the original files.
  void tellCopies() const;

 private:
  enum class Result { changed, notChanged, again };

  struct Attempt {
    Result result;
    std::optional<std::string> content;  ///< what the file has now, or would have after a dry run
  };

  Attempt change(const Harnesses::Target& target);
  Attempt attempt(const Harnesses::Target& target);
  Result write(const Harnesses::Target& target, const ConfigFile::Content& before,
               const Edited& edit, std::string_view word);
  Result leaveAlone(const Harnesses::Target& target, const std::string& place,
                    const std::string& what);
  void tell(const Harnesses::Target& target, std::string_view outcome);

  /// Complains of what is ours in the content, and is left to the user.
  void complainOfRest(const Harnesses::Target& target, const std::optional<std::string>& content);

  /// Locks out other runs until this one ends. False on failure.
  bool lock();

  Direction direction_;
  bool isDryRun_;
  const Context& context_;
  OS::Descriptor lock_;
  bool wasAnyLeftAlone_ = false;
  std::vector<std::string> copies_;
};

}  // namespace quillstead::cli
