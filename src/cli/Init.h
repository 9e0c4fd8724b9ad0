#pragma once

namespace quillstead::cli {

struct Context;

/// `quillstead init`: the place for memory.
namespace Init {

struct Options {
  bool project = false;  ///< the project's store instead of the personal one
};

/// Makes what is missing of the store; a project's is trusted from then on. Returns the exit
/// status.
int run(const Options& options, const Context& context);

}  // namespace Init
}  // namespace quillstead::cli
