#pragma once

#include <string>

/// Creates empty stores.
namespace quillstead::cli::PersonalStore {

enum class Outcome {
  made,
  wasThere,  ///< complete; nothing was changed
  failed,
};

/// Who may read a store: only its user, or all who work on a project.
enum class Audience { user, team };

/// Creates the missing parts of a store: its directory (0700 for a personal one, and so are missing
/// directories above it), `memory/`, and a `rules.md` with a note on its purpose and no rule.
/// Existing files are not changed.
Outcome make(const std::string& root, Audience audience = Audience::user);

}  // namespace quillstead::cli::PersonalStore

namespace quillstead::cli {

struct Context;

/// `quillstead init`: creates a store.
namespace Init {

struct Options {
  bool project = false;  ///< the project's store instead of the personal one
};

/// Creates the missing parts of the store. A project's store is then trusted. Returns the exit
/// status.
int run(const Options& options, const Context& context);

}  // namespace Init
}  // namespace quillstead::cli
