#include "cli/Install.h"

#include "cli/Context.h"
#include "cli/Init.h"
#include "cli/Places.h"
#include "cli/Setup/FileChanges.h"
#include "cli/Telemetry/LogFile.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/Text/Text.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quillstead::cli::Install {

namespace {

/// True when our programs are where the harnesses will look for them; complains when not.
bool areProgramsThere(const Context& context) {
  for (const std::string& path : {context.places.hook, context.places.server}) {
    if (access(path.c_str(), X_OK) != 0) {
      context.console.complain(path + ": is not there, or cannot be run. Put it beside quillstead");
      return false;
    }
    if (Text::repaired(path) != path) {
      context.console.complain(path + ": settings cannot name a path that is not UTF-8");
      return false;
    }
  }
  return true;
}

void tellWhatIsLeft(const std::vector<std::string>& harnesses, const Context& context) {
  const auto isSetUp = [&harnesses](std::string_view name) {
    return std::find(harnesses.begin(), harnesses.end(), name) != harnesses.end();
  };
  if (isSetUp("codex")) {
    context.console.print(
        "\ncodex: start it once and review the hooks (/hooks). Until then it runs none of them.\n");
  }
  if (isSetUp("claude-code")) {
    context.console.print(
        "\nclaude-code: to let the agent use its memory without asking you each time, add to\n" +
        context.places.claudeDirectory +
        "/settings.json\n  \"permissions\": {\"allow\": [\"mcp__quillstead\"]}\n");
  }
}

/// Creates the memory store and the log's directory; complains when it cannot.
bool makePlaces(const Context& context, const Programs& programs) {
  const std::string& store = context.places.personalStore;
  bool isDone = true;
  if (programs.log == programs.installedLog &&
      !OS::makeDirectories(context.places.stateDirectory, OS::FileMode::privateDirectory)) {
    context.console.complain(context.places.stateDirectory +
                             ": cannot be created, so there is no log");
    isDone = false;
  }
  switch (PersonalStore::make(store)) {
    case PersonalStore::Outcome::made:
      context.console.print("\nYour memory is in " + store + " (made).\n");
      break;
    case PersonalStore::Outcome::wasThere:
      context.console.print("\nYour memory is in " + store + ".\n");
      break;
    case PersonalStore::Outcome::failed:
      context.console.complain(store + ": cannot be created");
      isDone = false;
  }
  return isDone;
}

}  // namespace

int run(const SetupOptions& options, const Context& context) {
  const std::vector<std::string> harnesses = options.chosen(context);
  if (harnesses.empty() || !areProgramsThere(context)) return EXIT_FAILURE;

  const Programs programs =
      Programs::of(context.places, context.environment, LogPlace::named(context.places));
  FileChanges changes(options, context);
  for (const std::string& harness : harnesses) changes.changeAll(harness, programs);
  if (options.isDryRun) return changes.wasAnyLeftAlone() ? EXIT_FAILURE : EXIT_SUCCESS;

  changes.tellCopies();
  const bool isDone = makePlaces(context, programs);
  tellWhatIsLeft(harnesses, context);
  return isDone && !changes.wasAnyLeftAlone() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace quillstead::cli::Install
