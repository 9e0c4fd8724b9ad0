#pragma once

#include <optional>
#include <string>

namespace quillstead::hook::Witness {

/// Warns on standard error when the directory that the harness names and the one this process is in
/// are not the same, links followed. Only a warning: the lanes go by the harness's.
void warnIfCwdWitnessesDisagree(const std::optional<std::string>& payloadCwd);

}  // namespace quillstead::hook::Witness
