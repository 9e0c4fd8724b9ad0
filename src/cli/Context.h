#pragma once

#include "cli/Console.h"
#include "cli/Places.h"
#include "support/OS/Environment.h"

namespace quillstead::cli {

/// What every command gets besides its options.
struct Context {
  const OS::Environment& environment;
  Places places;
  Console& console;
};

}  // namespace quillstead::cli
