#pragma once

namespace quillstead::cli {

struct Context;
struct SetupOptions;

/// `quillstead uninstall`: what is ours goes out of the harnesses' settings.
namespace Uninstall {

/// Returns the exit status.
int run(const SetupOptions& options, const Context& context);

}  // namespace Uninstall
}  // namespace quillstead::cli
