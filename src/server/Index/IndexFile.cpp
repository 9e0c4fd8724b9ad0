#include "server/Index/IndexFile.h"

#include "support/OS/CacheDirectory.h"
#include "support/OS/Directory.h"

#include <array>
#include <charconv>
#include <cstdint>

namespace quillstead::IndexFile {

namespace {

/// Part of the name: files of another layout are left alone.
constexpr std::string_view layout = "1";

std::string cacheDirectory(const OS::Environment& environment) {
  const auto chosen = environment.value("XDG_CACHE_HOME");
  if (chosen && chosen->starts_with('/')) return std::string(*chosen);
  std::string home = homeDirectory(environment);
  if (home.empty()) return home;
  return home + '/' + std::string(OS::cacheDirectoryInHome());
}

/// FNV-1a.
std::uint64_t hashOf(std::string_view bytes) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char byte : bytes) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
  }
  return hash;
}

std::string inHexadecimal(std::uint64_t number) {
  constexpr int base = 16;
  std::array<char, base> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
  return {digits.data(), end};
}

}  // namespace

std::string place(const Scope& scope, const OS::Environment& environment) {
  constexpr mode_t onlyForTheUser = 0700;
  std::string cache = cacheDirectory(environment);
  if (cache.empty()) return cache;
  const std::string directory = cache + "/quillstead";
  if (!OS::makeDirectories(directory, onlyForTheUser)) return {};

  std::string roots = scope.personal ? scope.personal->root : "";
  roots += '\0';
  if (scope.project) roots += scope.project->root;
  return directory + "/index-" + std::string(layout) + '-' + inHexadecimal(hashOf(roots)) +
         ".sqlite";
}

}  // namespace quillstead::IndexFile
