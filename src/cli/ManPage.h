#pragma once

#include "cli/Description.h"

#include <string>

namespace quillstead::cli::ManPage {

/// The man page of a program, for section 1.
std::string of(const ProgramText& program);

}  // namespace quillstead::cli::ManPage
