#include "Workspace.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace quillstead {

Workspace::Workspace() {
  std::string pattern = std::filesystem::canonical(std::filesystem::temp_directory_path()) /
                        "quillstead-endtoend-XXXXXX";
  if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory to be had");
  directory_ = pattern;
}

Workspace::~Workspace() {
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

std::string Workspace::path(std::string_view name) const {
  return name.empty() ? directory_ : directory_ + "/" + std::string(name);
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return std::move(content).str();
}

void writeFile(const std::string& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary);
  file << content;
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

std::vector<std::string> piecesOf(std::string_view text, char end) {
  std::vector<std::string> pieces;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, text.find(end));
    pieces.emplace_back(piece);
    text.remove_prefix(std::min(piece.size() + 1, text.size()));
  }
  return pieces;
}

}  // namespace quillstead
