#include "support/OS/Beneath.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::OS {

namespace {

constexpr int mostLinks = 40;

/// The target of a symbolic link; absent, with errno, when `name` is not one.
std::optional<std::string> targetOf(int directory, const std::string& name) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlinkat(directory, name.c_str(), target.data(), target.size());
  if (length < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

/// Walks down from a directory, and never above it.
class Walk {
 public:
  Walk(const Descriptor& top, std::string path, int flags)
      : top_(top.number()), rest_(std::move(path)), flags_(flags | O_CLOEXEC | O_NOFOLLOW) {}

  Descriptor end() {
    if (rest_.empty()) return refused(ENOENT);
    if (rest_.starts_with('/')) return refused(EXDEV);
    for (;;) {
      const std::string step = next();
      if (step.empty()) return Descriptor(openat(here(), ".", flags_));
      if (step == "..") {
        if (below_.empty()) return refused(EXDEV);
        below_.pop_back();
        continue;
      }
      const bool isLast = rest_.find_first_not_of('/') == std::string::npos;
      constexpr int passing = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW;
      Descriptor opened(openat(here(), step.c_str(), isLast ? flags_ : passing));
      if (opened.isOpen()) {
        if (isLast) return opened;
        below_.push_back(std::move(opened));
        continue;
      }
      const int error = errno;
      const auto target = targetOf(here(), step);
      if (!target) return refused(error);
      if (++links_ > mostLinks) return refused(ELOOP);
      if (target->starts_with('/')) return refused(EXDEV);
      rest_ = *target + '/' + rest_;
    }
  }

 private:
  static Descriptor refused(int error) {
    errno = error;
    return {};
  }

  [[nodiscard]] int here() const { return below_.empty() ? top_ : below_.back().number(); }

  /// The next step, without "." and empty ones; empty at the end.
  std::string next() {
    for (;;) {
      const std::size_t begin = rest_.find_first_not_of('/');
      if (begin == std::string::npos) return {};
      const std::size_t end = std::min(rest_.find('/', begin), rest_.size());
      std::string step = rest_.substr(begin, end - begin);
      rest_.erase(0, end);
      if (step != ".") return step;
    }
  }

  int top_;
  std::vector<Descriptor> below_;  ///< the directories on the way, kept open
  std::string rest_;
  int flags_;
  int links_ = 0;
};

}  // namespace

Descriptor walkBeneath(const Descriptor& directory, const std::string& path, int flags) {
  return Walk(directory, path, flags).end();
}

}  // namespace quillstead::OS
