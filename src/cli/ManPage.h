#pragma once

#include "cli/Description.h"

#include <string>

namespace quillstead::cli::ManPage {

/// The manual page of a program, for section 1, in the macros of "man".
std::string of(const ProgramText& program);

}  // namespace quillstead::cli::ManPage
