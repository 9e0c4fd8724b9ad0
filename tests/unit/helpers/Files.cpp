#include "unit/helpers/Files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace quillstead::unit {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
  std::string pattern = (fs::canonical(fs::temp_directory_path()) / "quillstead-XXXXXX").string();
  if (const char* const made = mkdtemp(pattern.data())) path_ = made;
  EXPECT_FALSE(path_.empty()) << "no temporary directory " << pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  if (!path_.empty()) fs::remove_all(path_, ignored);
}

std::string TemporaryDirectory::operator/(std::string_view name) const {
  return path_ + "/" + std::string(name);
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << "cannot read " << path;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, std::string_view contents) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << contents;
  file.close();
  EXPECT_TRUE(file) << "cannot write " << path;
}

void writeExecutable(const std::string& path, std::string_view contents) {
  writeFile(path, contents);
  fs::permissions(path, fs::perms::owner_all);
}

ScopedDirectory::ScopedDirectory(const std::string& path) : before_(fs::current_path()) {
  fs::current_path(path);
}

ScopedDirectory::~ScopedDirectory() {
  std::error_code ignored;
  fs::current_path(before_, ignored);
}

}  // namespace quillstead::unit
