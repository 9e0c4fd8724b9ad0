#pragma once

namespace quillstead::cli {

struct Context;

/// `quillstead init`: creates a store.
namespace Init {

struct Options {
  bool project = false;  ///< the project's store instead of the personal one
};

/// Creates the missing parts of the store. A project's store is then trusted. Returns the exit
/// status.
int run(const Options& options, const Context& context);

}  // namespace Init
}  // namespace quillstead::cli
