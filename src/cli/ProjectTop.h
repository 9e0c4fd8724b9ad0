#pragma once

#include "cli/Context.h"

#include <optional>
#include <string>

/// The project that the current directory is in. The directories are absolute, links followed.
namespace quillstead::cli::ProjectTop {

/// The nearest directory with ".git", from the current one upwards; absent when there is none.
std::optional<std::string> withGit();

/// The nearest directory with a project store, trusted or not.
std::optional<std::string> withStore(const Context& context);

}  // namespace quillstead::cli::ProjectTop
