#pragma once

#include <string>

/// The personal store as it is before there is anything in it.
namespace quillstead::cli::PersonalStore {

enum class Outcome {
  made,
  wasThere,  ///< all of it; nothing was changed
  failed,
};

/// Who is to read a store: its user alone, or all who work on a project.
enum class Audience { user, team };

/// Makes what is missing of a store: its directory (for the user alone 0700, as those above it that
/// are missing), `memory/`, and a `rules.md` that holds a note on what it is for and no rule.
/// Nothing that is there is changed.
Outcome make(const std::string& root, Audience audience = Audience::user);

}  // namespace quillstead::cli::PersonalStore
