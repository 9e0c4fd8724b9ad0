#pragma once

namespace quillstead::cli {

struct Context;
struct SetupOptions;

/// `quillstead uninstall`: removes our entries from the harnesses' settings.
namespace Uninstall {

/// Returns the exit status.
int run(const SetupOptions& options, const Context& context);

}  // namespace Uninstall
}  // namespace quillstead::cli
