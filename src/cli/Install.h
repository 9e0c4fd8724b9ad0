#pragma once

namespace quillstead::cli {

struct Context;
struct SetupOptions;

/// `quillstead install`: the harnesses' settings get what our programs need.
namespace Install {

/// Returns the exit status.
int run(const SetupOptions& options, const Context& context);

}  // namespace Install
}  // namespace quillstead::cli
