#pragma once

#include <optional>
#include <string>

namespace quillstead::hook::Witness {

/// Warns on standard error when the directory that the harness names is not the one that this
/// process runs in (links followed). It is only a warning: the lanes use the harness's directory.
void warnIfCwdWitnessesDisagree(const std::optional<std::string>& payloadCwd);

}  // namespace quillstead::hook::Witness
