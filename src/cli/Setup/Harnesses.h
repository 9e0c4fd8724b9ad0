#pragma once

#include "cli/Places.h"
#include "cli/Setup/SettingsText.h"
#include "support/OS/Environment.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The harnesses that install can set up, and their files.
namespace quillstead::cli::Harnesses {

inline constexpr std::array<std::string_view, 4> names{"claude-code", "codex", "cursor",
                                                       "opencode"};

/// Whether the harness's configuration directory exists, or its program is on PATH.
bool isThere(std::string_view harness, const Places& places, const OS::Environment& environment);

/// The named harnesses; without a name, all that the user has.
std::vector<std::string> chosen(const std::vector<std::string>& named, const Places& places,
                                const OS::Environment& environment);

inline constexpr std::string_view noneIsThere =
    "none of Claude Code, Codex, Cursor and OpenCode is there. Name those that you want to set up";

/// A file, and how its content is edited. Absent content: no file.
struct Target {
  std::string_view harness;
  std::string path;
  std::function<EditOutcome(const std::optional<std::string>& before)> install;
  std::function<EditOutcome(const std::string& before)> uninstall;

  /// What is ours in the content and is left to the user; empty: nothing can be.
  std::function<std::optional<JSONC::Complaint>(const std::string& content)> rest = {};

  /// Whether the content tells the harness not to start the server; empty: nothing there can.
  std::function<bool(const std::string& content)> isSwitchedOff = {};
};

/// The files of a harness, in the order in which they are changed. `programs` must outlive the
/// result.
std::vector<Target> targets(std::string_view harness, const Places& places,
                            const Programs& programs);

/// The directories that install creates for the harness's files if missing, the innermost first.
std::vector<std::string> directories(std::string_view harness, const Places& places);

}  // namespace quillstead::cli::Harnesses
