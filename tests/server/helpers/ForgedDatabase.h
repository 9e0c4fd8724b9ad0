#pragma once

#include <string>

namespace quillstead::server::test {

/// Runs statements on a database file as anybody could who may write it, with nothing forbidden;
/// the test fails when one does.
void forge(const std::string& path, const char* statements);

}  // namespace quillstead::server::test
