#pragma once

#include "cli/Setup/SettingsText.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <vector>

/// The memory server's entry in a harness's JSON settings. If an entry with its name runs our
/// server through another program, or runs no program, it is the user's and stays.
namespace quillstead::cli::ServerEntry {

enum class Form {
  withType,     ///< {"type":"stdio","command":…,"args":[]}
  withoutType,  ///< {"command":…,"args":[]}
  asArray,      ///< {"type":"local","command":[…],"enabled":true}
};

struct Where {
  std::vector<std::string> keys;  ///< the path to the entry
  Form form;
};

/// Adds the entry to the content of a file (absent: no file), or updates it.
EditOutcome install(const std::optional<std::string>& before, const Where& where,
                    const std::string& server);

EditOutcome uninstall(const std::string& before, const Where& where);

/// Whether the entry has `"enabled": false`.
bool isSwitchedOff(const std::string& content, const Where& where);

}  // namespace quillstead::cli::ServerEntry
