#include "cli/Uninstall.h"

#include "cli/Context.h"
#include "cli/Places.h"
#include "cli/Setup/FileChanges.h"
#include "cli/Setup/Harnesses.h"
#include "support/OS/File.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace quillstead::cli::Uninstall {

namespace {

/// Removes the directories that install made for the harness, which are for the user alone, when
/// they are empty.
void removeMadeDirectories(std::string_view harness, const Context& context) {
  for (const std::string& path : Harnesses::directories(harness, context.places)) {
    struct stat status {};
    const bool isMade = lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                        (status.st_mode & 07777U) == OS::FileMode::privateDirectory;
    if (isMade) rmdir(path.c_str());
  }
}

/// The user's files that stay on the disk.
void tellWhatStays(const Context& context) {
  std::string text;
  for (const std::string& path :
       {context.places.personalStore, context.places.log, context.places.cacheDirectory,
        context.places.stateDirectory + "/backups"}) {
    if (access(path.c_str(), F_OK) == 0) text += "  " + path + "\n";
  }
  if (!text.empty()) context.console.print("\nLeft where they are:\n" + text);
}

}  // namespace

int run(const SetupOptions& options, const Context& context) {
  const std::vector<std::string> harnesses = options.chosen(context);
  if (harnesses.empty()) return EXIT_FAILURE;
  const Programs programs = Programs::of(context.places, context.environment, std::nullopt);
  FileChanges changes(options, context);
  for (const std::string& harness : harnesses) {
    const bool isAnyChanged = changes.changeAll(harness, programs);
    if (isAnyChanged) removeMadeDirectories(harness, context);
  }
  changes.tellCopies();
  if (!options.isDryRun) tellWhatStays(context);
  return changes.wasAnyLeftAlone() ? EXIT_FAILURE : EXIT_SUCCESS;
}

}  // namespace quillstead::cli::Uninstall
