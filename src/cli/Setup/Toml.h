#pragma once

// The TOML library, as all of our sources have to take it.
#define TOML_EXCEPTIONS 0
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>
