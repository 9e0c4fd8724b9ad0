#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillstead::unit {

/// A new, empty directory that goes away with its contents.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory();

  /// Its canonical path.
  [[nodiscard]] const std::string& path() const { return path_; }

  /// The path of something in it, whether it exists or not.
  [[nodiscard]] std::string operator/(std::string_view name) const;

 private:
  std::string path_;
};

/// Everything in the file; fails the test when it cannot be read.
std::string contentsOf(const std::string& path);

void writeFile(const std::string& path, std::string_view contents);

/// Writes a file that its owner may execute.
void writeExecutable(const std::string& path, std::string_view contents = "#!/bin/sh\n");

/// Changes the current directory for its lifetime.
class ScopedDirectory {
 public:
  explicit ScopedDirectory(const std::string& path);
  ScopedDirectory(const ScopedDirectory&) = delete;
  ScopedDirectory& operator=(const ScopedDirectory&) = delete;
  ~ScopedDirectory();

 private:
  std::filesystem::path before_;
};

}  // namespace quillstead::unit
