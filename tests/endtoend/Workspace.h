#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// A directory of one test's own, removed at its end.
class Workspace {
 public:
  Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;
  ~Workspace();

  /// The directory, links followed, or what is called `name` in it.
  [[nodiscard]] std::string path(std::string_view name = {}) const;

 private:
  std::string directory_;
};

/// Empty when there is no such file.
std::string contentOf(const std::string& path);

void writeFile(const std::string& path, std::string_view content);

/// The pieces of `text` that end in `end`, without it, and a last piece that may lack it.
std::vector<std::string> piecesOf(std::string_view text, char end);

}  // namespace quillstead
