#include "server/Store/PrivateFiles.h"

#include "server/Store/StoreFiles.h"

#include <sys/stat.h>

#include <algorithm>

namespace quillstead::server::PrivateFiles {

namespace {

/// True when others can reach what is in the directory `path`.
bool isEnterable(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && (status.st_mode & (S_IXGRP | S_IXOTH)) != 0;
}

void addWhenWide(const std::string& path, std::vector<Wide>& wide) {
  constexpr mode_t permissions = 07777;
  constexpr mode_t ofOthers = S_IRWXG | S_IRWXO;
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode)) return;
  if ((status.st_mode & ofOthers) == 0) return;
  const auto mode = static_cast<mode_t>(status.st_mode & permissions);
  wide.push_back({.path = path, .mode = mode});
}

}  // namespace

std::vector<Wide> widerThanPrivate(const Store& personal) {
  std::vector<Wide> wide;
  const std::string memory = personal.root + "/memory";
  addWhenWide(personal.root, wide);
  if (!isEnterable(personal.root)) return wide;
  addWhenWide(memory, wide);
  addWhenWide(personal.root + "/rules.md", wide);
  addWhenWide(personal.root + "/trusted", wide);

  if (!isEnterable(memory)) return wide;
  std::vector<std::string> cards;
  StoreFiles::forEachCardName(StoreFiles::openCards(personal),
                              [&](const char* name) { cards.emplace_back(memory + '/' + name); });
  std::sort(cards.begin(), cards.end());
  for (const std::string& card : cards) addWhenWide(card, wide);
  return wide;
}

}  // namespace quillstead::server::PrivateFiles
