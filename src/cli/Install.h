#pragma once

namespace quillstead::cli {

struct Context;
struct SetupOptions;

/// `quillstead install`: adds our entries to the harnesses' settings.
namespace Install {

/// Returns the exit status.
int run(const SetupOptions& options, const Context& context);

}  // namespace Install
}  // namespace quillstead::cli
