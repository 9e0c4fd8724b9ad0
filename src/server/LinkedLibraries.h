#pragma once

#include <string>

/// The libraries that a program was built with, and its compiler.
namespace quillstead::server::LinkedLibraries {

/// A line each, with name and version, like "SQLite 3.40.1"; no line end behind the last.
std::string lines();

}  // namespace quillstead::server::LinkedLibraries
