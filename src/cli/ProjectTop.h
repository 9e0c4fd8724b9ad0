#pragma once

#include "cli/Context.h"

#include <optional>
#include <string>

/// The project that the current directory is in. The directories are absolute, links followed.
namespace quillstead::cli::ProjectTop {

/// The nearest directory from the current one upwards that has ".git"; absent when there is none.
std::optional<std::string> withGit();

/// The nearest that has a store which is not a personal one, trusted or not.
std::optional<std::string> withStore(const Context& context);

}  // namespace quillstead::cli::ProjectTop
