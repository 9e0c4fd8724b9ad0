#pragma once

#include <string>
#include <vector>

namespace quillstead::cli {

struct Context;

enum class Direction { install, uninstall };

/// What `quillstead install` and `quillstead uninstall` are told.
struct SetupOptions {
  Direction direction = Direction::install;
  std::vector<std::string> harnesses;  ///< empty: all that the user has
  bool isDryRun = false;

  /// The harnesses that are meant. Complains when there is none.
  [[nodiscard]] std::vector<std::string> chosen(const Context& context) const;
};

}  // namespace quillstead::cli
